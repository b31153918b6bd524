// The settings summary of the main menu, row by row: six rows of a label and
// a value on the left ("SURVEY PARAMETERS") and on the right ("SYSTEM SETUP").
// Most cells read the same for every instrument; each instrument's hook fills
// the cells in which it differs.
#pragma once

struct SummaryRow;

// The six rows of the running program; returns 0 for a row not drawn.
int FillSummaryRow(int row, SummaryRow& cells);

// The instruments' own cells, rows 1 to 6 (their row hook in the instrument
// description). They return 0 for a row the instrument does not draw.
int GradiometerSummaryCells(int row, SummaryRow& cells);
int Lx2SummaryCells(int row, SummaryRow& cells);
int Em61Mk2SummaryCells(int row, SummaryRow& cells);
int Em31SummaryCells(int row, SummaryRow& cells);
int Em38SummaryCells(int row, SummaryRow& cells);
int Em343SummaryCells(int row, SummaryRow& cells);
int Em38Mk2SummaryCells(int row, SummaryRow& cells);
