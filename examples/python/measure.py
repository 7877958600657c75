"""measure.py RESOURCE [DETECTOR_FILE] - opens the instrument, sets a fixed frequency, steps through
a range, prints the traces of all channels and what is in the error trail, and closes.
"""

import sys
import warnings

import zentrelk4n as k4n


def show_note(message, category, *place):
    """Some successes say more than success; the package warns of them."""
    print(
        f"Note of {message.member}: 0x{message.code:08X}"
        if category is k4n.DriverWarning
        else message
    )


def set_fixed_frequency(rf):
    rf.level = -10
    rf.frequency = "2.4 GHz"  # or 2.4e9: numbers are in hertz, dBm and seconds
    rf.output_enabled = True
    # The driver reads 1 for true here, in other places -1. The package makes True of both.
    print(
        f"Output: {rf.frequency / 1e9:.3f} GHz, {rf.level:.2f} dBm, "
        f"{'on' if rf.output_enabled else 'off'}"
    )


def measure(gen, detector_file):
    trace = gen.measure(
        start="2 GHz",
        stop="2.8 GHz",
        step="50 MHz",
        level=-10,
        averaging=3,
        detectors=detector_file,
    )
    start, stop, step = (
        trace.frequency[0],
        trace.frequency[-1],
        trace.frequency[1] - trace.frequency[0],
    )
    print(f"Sweep: {start / 1e9:.3f} to {stop / 1e9:.3f} GHz in steps of {step / 1e9:.3f} GHz")
    print("     GHz", *(f"Channel{name}" for name in trace.channels), sep="  ")
    for frequency, *values in zip(trace.frequency, trace.a, trace.b, trace.r):
        print(f"{frequency / 1e9:8.3f}" + "".join(f"{value:10.2f}" for value in values))


def print_error_trail(gen):
    """What the driver has written down: also failures that no result told of. Whether there is
    nothing.
    """
    errors = 0
    while True:
        code, message = gen.utility.error_query()
        if code == 0:
            break
        errors += 1
        print(f"Error: 0x{code & 0xFFFFFFFF:08X} {message}")
    if errors == 0:
        print("No errors")
    return errors == 0


def run(resource, detector_file):
    """Whether all went well."""
    # An identification query cannot be had: the driver opens the session, and warns.
    with k4n.open(resource, id_query=True) as gen:
        print(f"Instrument: {gen.model}, serial number {gen.serial}")
        done = True
        try:
            set_fixed_frequency(gen.rf)
            measure(gen, detector_file)
        except k4n.DriverError as error:
            report(error)
            done = False
        done &= print_error_trail(gen)
    print("Closed")
    return done


def report(error):
    print(
        f"Failed: {error.member}: 0x{error.code:08X}"
        + (f": {error.description}" if error.description else "")
    )


def main(resource, detector_file=None):
    warnings.showwarning = show_note
    try:
        return 0 if run(resource, detector_file) else 1
    except k4n.DriverError as error:
        report(error)
    except k4n.Error as error:
        print(f"Failed: {error}")
    return 1


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit("usage: measure.py RESOURCE [DETECTOR_FILE]")
    sys.exit(main(*sys.argv[1:3]))
