// The two half widths of the swath that the map paints, from the instrument's
// size and the antenna's offset across the direction of travel. Each dialog that
// touches the geometry sets them again with its own base values; the settings
// reader sets them last at start.
#pragma once

// Map units: 0 metres, anything else feet of 0.3048 m.
constexpr double SWATH_FEET_IN_METRES = 0.3048;

// EM31-MK2, EM38, EM34-3, EM38-MK2: width by the "Map Swath" index 0 to 7
// (0.25, 0.5, 1, 2, 3, 4, 5, 10), not converted to feet. Another index leaves
// the swath as it was.
void SwathByMapIndex();

// EM61-MK2: sensor base by size (1.0, 0.5, 1.0, 0.5, then `handHeld`), then the
// EM61 width rule. Another size leaves the swath as it was.
void SwathEm61Mk2(double handHeld);

// EM61-LX2: `base` for one sensor, twice that with two, then the EM61 rule.
void SwathEm61Lx2(double base);

// The EM61 width rule for sensor base `base`: "Map Swath" index 11 paints two
// bases, other indexes (index x 0.1 + 0.5) bases.
void SwathEm61FromBase(double base);

// Grad601: SwathBar from the index with one sensor, twice the sensor separation
// with two.
void GradSwathDerived();

// The settings reader's choice: hand-held EM61-MK2 counts 2.0 m there, the
// EM61-LX2 base is 1.03 m.
void SwathForSettingsReader();

// Geometry Setup's choice: the same rules, but a hand-held EM61-MK2 counts 0.2 m.
void SwathForGeometrySetup();
