# zq tools: add, list, run and remove items of a tools-menu file.
run 0 tools add tools.tlm --text Touch --program /usr/bin/touch --arguments "$PWD/touched"
run 0 tools add tools.tlm --text "Disk usage" --program /usr/bin/df --arguments -h --hidden \
    --description "Free space"
run 0 tools list tools.tlm
has "  1  Touch"
has "  2  Disk usage                      /usr/bin/df -h [hidden]"
run 0 tools list --json tools.tlm
check "items as JSON" python3 -c '
import json, sys
v = json.loads(sys.argv[1])
assert [i["text"] for i in v] == ["Touch", "Disk usage"], v
assert v[0]["shown"] and not v[1]["shown"] and v[1]["description"] == "Free space", v' "$out"

run 0 tools run tools.tlm Touch
has "started Touch"
for _ in $(seq 50); do [ -e touched ] && break; sleep 0.1; done
check "the item's program ran" test -e touched

run 0 tools remove tools.tlm 1
run 0 tools list --json tools.tlm
check "one item left" python3 -c '
import json, sys
assert [i["text"] for i in json.loads(sys.argv[1])] == ["Disk usage"]' "$out"

run 1 tools remove tools.tlm Nope
err_has "no item"
run 1 tools run tools.tlm 7
run 1 tools list missing.tlm
err_has "(tools menu status 5)"
printf 'not a tools file at all, but long enough to hold a header of one hundred and forty-four bytes, which it must have to get that far.' >bad.tlm
run 1 tools list bad.tlm
run 1 tools add bad.tlm --text X --program /bin/true
run 1 tools add tools.tlm --text "A menu text far too long for its field" --program /bin/true
err_has "(tools menu status 8)"
run 0 tools add tools.tlm --text Nothing --program /nonexistent/program
run 1 tools run tools.tlm Nothing
err_has "(tools menu status 14)"
run 2 tools add tools.tlm --program /bin/true
run 2 tools remove tools.tlm
run 2 tools
