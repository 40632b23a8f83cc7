# zq ini: every kind, listing, deletion and failures.
run 0 ini set ./demo.ini Window Size --rect 0 0 640 480
run 0 ini set ./demo.ini Modem Speed 19200 --int
run 0 ini set ./demo.ini Modem Init "AT&F E0"
run 0 ini set ./demo.ini Modem Mask --hex 31
run 0 ini set ./demo.ini Modem Calls --long 4000000000
run 0 ini set ./demo.ini Modem Speaker --bool on
run 0 ini set ./demo.ini Colors Text --color 153 102 51
run 0 ini set ./demo.ini Colors Back --color '#ff8000'
run 0 ini set ./demo.ini Keys Dial --accel 3 68 100
run 0 ini set ./demo.ini Window Place --placement 0 1 -1 -1 -1 -1 10 20 300 400

check "entries as the class writes them" grep -q '^Size=0, 0, 640, 480' demo.ini
check "hex entry" grep -q '^Mask=0x0000001F' demo.ini
check "colour entry" grep -q '^Back=255 128 0' demo.ini
check "flag entry" grep -q '^Speaker=1' demo.ini

run 0 ini get ./demo.ini Window Size --rect
out_is "0 0 640 480"
run 0 ini get ./demo.ini Modem Speed --int
out_is "19200"
run 0 ini get ./demo.ini Modem Init
out_is "AT&F E0"
run 0 ini get ./demo.ini Modem Mask --hex
out_is "0x0000001F"
run 0 ini get ./demo.ini Modem Calls --long
out_is "4000000000"
run 0 ini get ./demo.ini Modem Speaker --bool
out_is "1"
run 0 ini get ./demo.ini Colors Text --color
out_is "153 102 51"
run 0 ini get ./demo.ini Keys Dial --accel
out_is "3 68 100"
run 0 ini get ./demo.ini Window Place --placement
has "0 1"
run 0 ini get ./demo.ini Modem Init --tokens ' ' --json
check "tokens as a JSON list" python3 -c '
import json, sys
v = json.loads(sys.argv[1])
assert v["value"] == ["AT&F", "E0"] and v["default_used"] is False, v' "$out"

# A missing entry: a failure, or the default when one is given.
run 1 ini get ./demo.ini Modem Nope --int
err_has "(profile status 7)"
run 0 ini get ./demo.ini Modem Nope --int --default 9600
out_is "9600"

# A bare name lives in the emulated Windows folder.
run 0 ini set zqdemo.ini Main Started --bool yes
check "bare name in C:\\windows" test -f "$ZQ_PREFIX/drive_c/windows/zqdemo.ini"
run 0 ini get zqdemo.ini Main Started --bool
out_is "1"

run 0 ini sections ./demo.ini
out_is $'Window\nModem\nColors\nKeys'
run 0 ini keys ./demo.ini Modem --json
check "keys as JSON" python3 -c '
import json, sys
assert json.loads(sys.argv[1]) == ["Speed", "Init", "Mask", "Calls", "Speaker"]' "$out"
run 0 ini delete ./demo.ini Modem Speed
run 1 ini get ./demo.ini Modem Speed --int
run 0 ini delete ./demo.ini Colors
run 0 ini sections ./demo.ini --json
check "section deleted" python3 -c '
import json, sys
assert json.loads(sys.argv[1]) == ["Window", "Modem", "Keys"]' "$out"

run 1 ini sections ./missing.ini
err_has "ERROR_FILE_NOT_FOUND"
run 1 ini keys ./missing.ini Modem
run 1 ini set ./demo.ini Modem "$(printf 'k%.0s' {1..300})" value
err_has "(profile status 7)"
run 1 ini delete "./$(printf 'f%.0s' {1..300}).ini" Modem
err_has "(profile status 9)"
run 2 ini set ./demo.ini Modem Speed fast --int
run 2 ini set ./demo.ini Colors Text --color 300 0 0
run 2 ini set ./demo.ini Window Size --rect 1 2 3
run 2 ini get ./demo.ini Modem Speed --int --hex
run 2 ini get ./demo.ini Modem
run 2 ini
