// The colour classes of the colour image: 50 classes from blue to magenta and
// class 50, white, for "no valid reading in this view".
#pragma once
#include <cstdint>

constexpr int ColourIndexCount = 50;

// RGB of each class as 0xRRGGBB, classes 0 to 50.
extern const uint32_t ColourTable[ColourIndexCount + 1];

// The same colour as the 0x00BBGGRR value that drawing calls take.
uint32_t ColourClassColorRef(int colourClass);
