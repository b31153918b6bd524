// An open file as the replays read it: its handle moved with SetFilePointerEx
// and read with ReadFile, nothing written. The data file is read through the
// writers' own handle, opened for reading and writing.
#pragma once
#include "core/state.h"
#include "datafile/replay_file.h"

ReplayFile ReplayFileOfHandle(HandleWord file);
