#include "core/state.h"

#include <new>

ProgramSettings Settings;
ScreenMetrics Screen;
SessionRecord Session;
InstrumentLinkRecord Link;
GpsLinkRecord GpsLink;
ModelRecord Model;
DataFileRecord DataFileState;
PositionRecord Position;
MapWindowRecord MapWindow;
DisplayScalesRecord Scales;
MessageTextsRecord Messages;

template <typename Record> static void ResetRecord(Record& record) {
  // Volatile members forbid plain assignment; rebuild in place instead.
  record.~Record();
  new (&record) Record();
}

void ResetProgramState() {
  ResetRecord(Settings);
  ResetRecord(Screen);
  ResetRecord(Session);
  ResetRecord(Link);
  ResetRecord(GpsLink);
  ResetRecord(Model);
  ResetRecord(DataFileState);
  ResetRecord(Position);
  ResetRecord(MapWindow);
  ResetRecord(Scales);
  ResetRecord(Messages);
}
