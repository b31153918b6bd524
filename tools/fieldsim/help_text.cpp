#include "options.h"

namespace fieldsim {

const char* HelpText() {
  return R"(fieldsim - plays a ground survey over serial lines: an NMEA receiver and an
EM31-MK2 / EM34-3 / EM38 / EM61-MK2 / EM61-LX2 instrument, as the field
logger sees them.

Usage: fieldsim [--gps PATH] [--instrument PATH] [options]

Give each link a serial device, e.g. one end of a pty pair made by
  socat -d -d pty,raw,echo=0,link=/tmp/gps-sim pty,raw,echo=0,link=/tmp/gps-app
and let the logger open the other end. A link that goes away is opened again
every 0.5 s. An existing regular file may stand for a device: it is appended
to. Nothing is printed unless something fails or --verbose is given.

GPS receiver:
  --gps PATH            serial device for the NMEA sentences
  --gps-option N        the logger's "NMEA Data:" choice, 0..8 (default 0):
                        0 GGA+GSA, 1 GGA, 2 POS, 3 LLK, 4 LLQ, 5 GLL, 6 GGK,
                        7 total station pseudo-GGA, 8 pseudo-GLL (no checksum)
  --slam                option 7 with the SLAM fields (confidence, roll, pitch,
                        yaw) and a checksum; without it pseudo-GGA has none
  --rts-feet            option 7: grid values in feet, unit letter "F"
  --rate HZ             sentences per second, 1..20 (default 10)
  --mix                 mix other sentences in (RMC, VTG, GSA, GGA, GLL, and
                        once a second GSV and ZDA), never the option's key
  --baud B              tty speed of the GPS line (default 9600)
  --quality Q           fix quality as GGA counts it, 0..9 (default 4); POS
                        gets Q-1 since it counts from 0
  --noise M             position noise in metres (default 0.02)

Instrument:
  --instrument PATH     serial device for the instrument's frames (9600 baud)
  --model M             em31 (95.238 ms), em34 (55.078 ms), em38-7 (72 ms,
                        7-byte frames), em38-12 (91 ms, 12-byte frames),
                        em61mk2 or em61lx2 (binary frames after a command);
                        default em31
  --dipole v|h          dipole (default v)
  --range R             range code 0..7 of the status byte (default: 4 for
                        em31 and em34, 0 for em38)
  --separation S        EM34-3 coil separation 10, 20 or 40 m (default 20)
  --inphase             EM38: frames carry the inphase instead of conductivity
  --divide-by-8         EM38: set the status bit that divides the factor by 8
  --status-bit7         set bit 7 of the status byte as well
  --model grad601       Grad601 "$PBAR" sentences every 91 ms, --sensors 1|2
                        (default 2)
  --model em38mk2       EM38-MK2 binary frames every 47 ms at 19200 baud,
                        --coils 2|1 (default 2: "EM38-MK2", 1: "EM38-MK2-1"),
                        --temperature C (default 20)
  --marker-every SEC    press the button for one frame every SEC seconds

EM61-MK2 and EM61-LX2 (idle until 'H' 'X' or 'H' 'W'; frames of 15 bytes):
  --polled              answer "OK" and send a frame for each 'A'; without it
                        answer "OV" and send a frame every 55.078 ms
  --reply R             normal, none (never answer), wrong ("ER") or noisy
                        (bytes between 'O' and the letter); default normal
  --sensors N           EM61-LX2: 1 or 2 sensors (default 1)
  --wheel-step M        Wheel mode ('H' 'W'): a frame per M metres (default 0.2)
  --target-every M      metal targets on the first line every M metres, in turn
                        left, between, right and both sides (default 6; 0 none)
  --target-start M      metres along the first line of the first target
                        (default: one spacing)
  --target-amplitude MV peak of a target on the early channel (default 600)
  --stamp               the fourth channel word carries the frame's number
  --current N           raw transmitter current word (default 3000)
  --battery N           battery byte, volts x 6.66757 (default 80)

The walk (values come from a synthetic ground: a conductivity trend and a
few buried conductive targets along the survey):
  --origin LAT,LON      start of the first line (default 43.6099,-79.6107)
  --lines N             parallel lines walked to and fro (default 10)
  --line-length M       metres (default 40)
  --spacing S           metres between lines (default 1)
  --speed V             walking speed in m/s (default 1.2)
  --heading DEG         direction of the first line, clockwise from north
  --path FILE           walk a file of "lat lon" lines instead
  --duration SEC        stop after SEC seconds (default 0: run until "quit")
  --start-time HHMMSS.ss  UTC time of the first sentence (default: now)
  --seed N              seed of noise, garbage and target placement

Running:
  --pace                emulate the line speed: bytes leave no faster than
                        baud/10 a second (a too busy line drops messages)
  --log FILE            log every message sent: "<epoch ms> <stream> <bytes>",
                        streams gps, instrument, gps< and instrument< (what
                        came back) and note; control bytes as \r \n \xHH
  --script FILE         timed commands, lines "at 12.5 quiet gps 4"
  --verbose             acknowledge commands and report events on stdout
  --help                this text

Commands on standard input, one a line (also in --script after "at SEC"):
  quiet gps N | quiet instrument N   silence for N seconds (0 ends it)
  garbage gps N | garbage instrument N
                        N random bytes; never '$' or LF on the GPS line, never
                        CR on the instrument line, so they can't fake a line end
  overlong gps N [lf]   a line of N characters ("$GPTXT,..." then digits)
                        without LF; with "lf" it is ended by CR LF
  dollar-mid            half of the next sentence, then the whole sentence
                        again, so a '$' stands in the middle of a line
  bad-checksum          the next position sentence with a wrong checksum (one
                        is added to a sentence that has none)
  lower-checksum        the next sentence whose checksum has a hex letter gets
                        it in lower case
  close gps | close instrument   close the port for good
  marker                press the instrument's button for one frame
  hold N                hold the button down for N frames (Manual stations)
  dipole v|h            turn the instrument to the other dipole
  separation 10|20|40   EM34-3: change the coil separation
  model M               send another model's frames from now on (em31, em34,
                        em38-7, em38-12): the wrong instrument on the port
  bad-cr                the next frame gets one character too many before
                        its CR
  letters               the next frame has letters where digits belong
  overlong instrument N N digits without CR on the instrument line
  fault no-end|short|letters|long|end-inside
                        Grad601, EM38-MK2: spoil the next message: no CR
                        (Grad601) or no end pair (EM38-MK2); a line one byte
                        short; letters in a value; a line of 140 characters;
                        0xFF 0xFF in the data words
  cut N                 EM61: the next N frames without their 0x7F 0x7F end
  split                 EM61: the next frame in two writes 40 ms apart
  lift N                EM61: coils held in the air for N seconds (no ground)
  reply R               EM61: answer the next commands as --reply R
  quit

Examples:
  fieldsim --gps /tmp/gps-sim --gps-option 1 --rate 5 --mix
  fieldsim --instrument /tmp/em-sim --model em34 --separation 40 --log sent.log
  fieldsim --gps /tmp/gps-sim --instrument /tmp/em-sim --duration 60 --script faults.txt
)";
}

}  // namespace fieldsim
