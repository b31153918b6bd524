// fieldsim: plays a ground survey over serial lines, as the field logger sees
// it: an NMEA receiver on one line and an EM31-MK2, EM34-3 or EM38 on the
// other, walking parallel lines over a synthetic ground. It is the driver of
// the end-to-end tests and the demo, and speaks the protocols on its own: it
// shares no code with the programs it talks to.
//
// Usage (full list: fieldsim --help):
//   socat -d -d pty,raw,echo=0,link=/tmp/gps-sim pty,raw,echo=0,link=/tmp/gps-app &
//   socat -d -d pty,raw,echo=0,link=/tmp/em-sim pty,raw,echo=0,link=/tmp/em-app &
//   fieldsim --gps /tmp/gps-sim --gps-option 0 --rate 10 --mix
//            --instrument /tmp/em-sim --model em31 --log sent.log
// and let the logger (or `cat`) read /tmp/gps-app and /tmp/em-app.
//
// Commands on standard input, one a line, or timed in --script ("at 12.5 ..."):
//   quiet gps|instrument N, garbage gps|instrument N, overlong gps N [lf],
//   dollar-mid, bad-checksum, lower-checksum, close gps|instrument, marker, quit.
// --log FILE keeps "<epoch ms> <stream> <bytes>" of every message sent.
// tools/fieldsim/selfcheck.py checks the output of every option and fault.

#include <cstdio>
#include <string>

#include "options.h"
#include "simulator.h"

int main(int argc, char** argv) {
  fieldsim::Options options;
  std::string error;
  switch (fieldsim::ParseOptions(argc, argv, options, error)) {
    case fieldsim::ParseResult::Help:
      fputs(fieldsim::HelpText(), stdout);
      return 0;
    case fieldsim::ParseResult::Error:
      fprintf(stderr, "fieldsim: %s\n", error.c_str());
      return 2;
    case fieldsim::ParseResult::Run:
      break;
  }
  fieldsim::Simulator simulator(options);
  if (!simulator.Prepare(error)) {
    fprintf(stderr, "fieldsim: %s\n", error.c_str());
    return 2;
  }
  return simulator.Run();
}
