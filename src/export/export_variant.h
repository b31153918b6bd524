// The exporter reads files of every program of the family, and runs as the
// program that wrote the file in hand: its instrument and product are chosen
// at run time. The exporter's main and the test programs define this.
#pragma once

void SelectVariant(int instrumentModel, int productMode);
