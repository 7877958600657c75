function done = measure(resource, detectorFile)
%MEASURE  Opens the instrument, sets a fixed frequency, steps through a range, prints the traces of
%   all channels and what is in the error trail, and closes; measure(RESOURCE) or
%   measure(RESOURCE, DETECTOR_FILE). True when all went well.
%   The driver is called through its Python package, zentrelk4n.

k4n = py.importlib.import_module('zentrelk4n');
detectors = py.None;  % the driver has loaded calibr20.det, where there is one
if nargin > 1
    detectors = char(detectorFile);
end

% Some successes say more than success: Python warns of them, which MATLAB does not show. They go to
% a file.
notes = [tempname '.log'];
py.logging.basicConfig(pyargs('filename', notes, 'filemode', 'w', 'force', true));
py.logging.captureWarnings(true);

done = false;
try
    % An identification query cannot be had: the driver opens the session, and warns.
    session = k4n.open(char(resource), pyargs('id_query', true));
catch failure
    report(failure);
    return
end
closing = onCleanup(@() session.close());  % also when something else fails here
printNotes(notes);
fprintf('Instrument: %s, serial number %s\n', char(session.model), char(session.serial));
try
    setFixedFrequency(session.rf);
    measureTraces(session, detectors);
    done = true;
catch failure
    report(failure);
end
done = printErrorTrail(session) && done;
session.close();  % once more does nothing
fprintf('Closed\n');
end


function setFixedFrequency(rf)
rf.level = -10;
rf.frequency = 2.4e9;
rf.output_enabled = true;
% The driver reads 1 for true here, in other places -1. The package makes true of both.
states = {'off', 'on'};
fprintf('Output: %.3f GHz, %.2f dBm, %s\n', ...
        rf.frequency / 1e9, rf.level, states{1 + rf.output_enabled});
end


function measureTraces(session, detectors)
trace = session.measure(pyargs('start', 2e9, 'stop', 2.8e9, 'step', 50e6, 'level', -10, ...
    'averaging', int32(3), 'detectors', detectors, 'progress', false));
frequency = double(trace.frequency);
values = [double(trace.a); double(trace.b); double(trace.r)];
fprintf('Sweep: %.3f to %.3f GHz in steps of %.3f GHz\n', ...
    frequency(1) / 1e9, frequency(end) / 1e9, (frequency(2) - frequency(1)) / 1e9);
fprintf('     GHz  ChannelA  ChannelB  ChannelR\n');
fprintf('%8.3f%10.2f%10.2f%10.2f\n', [frequency / 1e9; values]);
end


function clean = printErrorTrail(session)
% What the driver has written down: also failures that no result told of. Whether there is nothing.
clean = true;
utility = session.utility;
while true
    record = utility.error_query();
    code = int32(int64(record.error_code));
    if code == 0
        break
    end
    clean = false;
    fprintf('Error: 0x%08X %s\n', typecast(code, 'uint32'), char(record.error_message));
end
if clean
    fprintf('No errors\n');
end
end


function report(failure)
if ~isa(failure, 'matlab.exception.PyException')
    rethrow(failure);
end
value = failure.ExceptionObject{2};
if ~isa(value, 'py.zentrelk4n.errors.DriverError')
    fprintf('Failed: %s\n', char(py.str(value)));
    return
end
fprintf('Failed: %s: 0x%08X', char(value.member), uint32(int64(value.code)));
description = char(value.description);
if ~isempty(description)
    fprintf(': %s', description);
end
fprintf('\n');
end


function printNotes(notes)
found = regexp(fileread(notes), 'DriverWarning: ([\w.]+): (0x\w+)', 'tokens');
for note = found
    fprintf('Note of %s: %s\n', note{1}{1}, note{1}{2});
end
end
