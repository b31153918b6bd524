// What each instrument brings before any settings are read: the values a new
// settings file is written with, and the reading scales of the model.
#pragma once

// Lays the per-model defaults over the starting values of the records.
void ApplyModelDefaults();

// Reading-axis ranges, profile channels and tick tables of the model.
void InitReadingScales();
