// Columns 16 to 25 of the header's first record: the instrument's type, modes
// and switches, each instrument in its own form. Each writes its text into
// `out` (at most `capacity` bytes with the terminator).
#pragma once

void GradiometerHeaderConfiguration(char* out, int capacity);
void Lx2HeaderConfiguration(char* out, int capacity);
void Em61Mk2HeaderConfiguration(char* out, int capacity);
void Em38Mk2HeaderConfiguration(char* out, int capacity);
// The EM31-MK2 and EM38 with their coil length, the EM34-3 with its coil reference.
void CoilLengthHeaderConfiguration(char* out, int capacity);
void CoilReferenceHeaderConfiguration(char* out, int capacity);

// The EM61-LX2 marks its sensor count and a type other than Standard; the
// navigation EM61-MK2 marks the High Power types.
void Lx2SignatureMarks(char signature[10]);
void Em61Mk2SignatureMarks(char signature[10]);
