# zq trace, zq mailboxes and zq modules.

# The trace switch.
run 0 trace status
has "tracing off, level 1"
run 0 trace on --level 3
run 0 trace status --json
check "switch on with its level" python3 -c '
import json, sys
v = json.loads(sys.argv[1])
assert v["tracing"] is True and v["level"] == 3, v' "$out"
run 0 trace off
run 0 trace status
has "tracing off"

# A trace file beside the executable, under a name of this run's own.
name="Cli Test $$"
run 0 trace write "$name" "ATZ" "OK"
trace_file="$(dirname "$zq_binary")/ZqCliTest$$.TRC"
check "trace file beside the executable" test -f "$trace_file"
check "header, lines and footer" grep -q $'^ATZ\r$' "$trace_file"
check "footer" grep -q "ZqCliTest$$.TRC - Stopped" "$trace_file"
printf 'from stdin\n' | zq trace write --append --timestamps "$name" >/dev/null
check "appended with a time stamp" grep -q '^(00:00:0.\....) from stdin' "$trace_file"
run 0 trace list --json
check "listed" python3 -c '
import json, sys
paths = [e["path"] for e in json.loads(sys.argv[1])]
assert any(p.endswith("zqclitest" + sys.argv[2] + ".trc") for p in paths), paths' "$out" "$$"
rm -f "$trace_file"
run 2 trace write "$name" --level 0 x
run 1 trace write "$(printf 'x%.0s' {1..150})" x
err_has "the trace file cannot be opened or made"
run 2 trace

# Mailboxes.
run 0 mailboxes list --json
out_is "[]"
run 1 mailboxes default
run 1 mailboxes path 42
run 0 mailboxes add 42 "Anna Huber"
run 0 mailboxes add 7 Sales
run 0 mailboxes list
has "* 00000042  Anna Huber"
has "  00000007  Sales"
run 1 mailboxes add 7 Other
err_has "a mailbox has this number already"
run 1 mailboxes add 8 sales
err_has "a mailbox has this name already"
run 0 mailboxes default 7
run 0 mailboxes default --json
check "default as JSON" python3 -c '
import json, sys
assert json.loads(sys.argv[1]) == {"number": 7, "name": "Sales"}' "$out"
run 0 mailboxes remove 7
run 0 mailboxes default
out_is "00000042  Anna Huber"
run 1 mailboxes remove 7
run 1 mailboxes default 7
run 0 mailboxes path 42 --folder inbox
has "\\MAILBOX\\00000042\\INBOX"
run 2 mailboxes path 42 --folder attic
run 2 mailboxes add 123456789 Big

# Installed modules.
run 0 modules list --json
out_is "[]"
run 0 modules install fax32mirkel --template ZQFAXTPL.DLL
run 0 modules install 500 --template ZQDATA.DLL --access 5
run 0 modules list
has "FAX32Mirkel  0x0F usable   ZQFAXTPL.DLL"
has "DATAMirkel   0x05 usable   ZQDATA.DLL"
run 0 modules disable 300
run 0 modules list --json
check "switched off" python3 -c '
import json, sys
m = {x["name"]: x for x in json.loads(sys.argv[1])}
assert m["FAX32Mirkel"]["usable"] is False and m["DATAMirkel"]["usable"] is True, m' "$out"
run 1 modules enable 300
err_has "only modules listed as usable"
run 1 modules disable 100
run 2 modules enable 999
run 2 modules install 300
