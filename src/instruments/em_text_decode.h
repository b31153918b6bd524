// Decoding of the text frames of the EM31-MK2, the EM34-3 and the EM38: the
// status byte walked from the top bit down, the gain and factor by range
// code, and the two values into the reading's channels.
#pragma once

constexpr int READING_CHANNELS = 8;

// The three ways of reading the status byte.
enum EmStatusForm {
  STATUS_EM31,    // dipole bit set means vertical
  STATUS_EM34,    // dipole bit set means horizontal, then the coil separation
  STATUS_EM38,    // as the EM31-MK2, with the divide-by-8 bit and the component bit
};

// What a frame says.
struct EmReading {
  double Conductivity = 0.0;
  double Inphase = 0.0;
  char Dipole = 'V';            // 'V' or 'H'
  int Gain = 0;                 // as shown, 16 bits
  char Marker = 'N';            // 'M' marker pressed, 'N' not (always 'N' in Manual)
  int Channel = 0;              // channel code of the reading
  int Separation = 0;           // EM34-3: 10, 20 or 40 m
  int ConductivityFrame = 1;    // EM38: 1 the frame carries conductivity, 0 inphase
  int Range = 0;                // what is left of the status byte
  double Values[READING_CHANNELS] = {};   // ChannelValues
  int Valid[READING_CHANNELS] = {};       // ChannelValid
};

// The settings that change the decoding.
struct EmDecodeSettings {
  int Manual = 0;               // survey mode Manual: no marker letter
  int InphaseOnly = 0;          // EM31-MK2 Components setting 1 ("Inphase")
  int ShortCoil = 0;            // EM31-MK2 Type "Short": inphase divided by 3.35
};

// The frame's bytes from its 'T' on, `length` of them before the CR (7 or 12).
void EmDecodeFrame(const unsigned char* frame, int length, EmStatusForm form,
                   const EmDecodeSettings& settings, EmReading& out);

// The value of five characters "+1234": the text to number conversion stops
// at the first bad character, so a value that is no number reads as 0.
double EmFrameValue(const unsigned char* text);

// The status byte as the handlers see it: less 128 when it is 128 or more.
int HandlerStatus(unsigned char status);
