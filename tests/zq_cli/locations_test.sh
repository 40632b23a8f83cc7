# zq locations and zq dial: locations in the registry, and the dial
# strings the library builds from them.
run 1 locations current
err_has "no current location is set"
run 1 dial 44 171 2345678
err_has "no current location is set"
run 0 locations list --json
out_is "[]"

run 0 locations add "München Büro" --country 49 --area 89 --international-access 00 \
    --long-distance-access 0 --local-prefix 0, --long-distance-prefix 0,
run 0 locations add "New York" --country 1 --area 212,718 --international-access 011 \
    --long-distance-access 1 --local-prefix 9, --long-distance-prefix 8, --call-waiting '*70,'
run 0 locations list
has "* 0   München Büro             +49   89         Germany"
has "  1   New York                 +1    212,718    United States of America"
run 0 locations current
out_is "München Büro"

# From Munich: international, long distance, local, local as long distance.
run 0 dial 44 171 "234 5678"
out_is "International call: 0,00-44-171-2345678"
run 0 dial 49 30 1234567
out_is "Long-distance call: 0,0-30-1234567"
run 0 dial 49 89 1234567
out_is "Local call: 0,1234567"
run 0 dial --force-long-distance 49 89 1234567
out_is "Local call dialed as long distance: 0,0-89-1234567"
run 0 dial --drop-first-digit 49 89 1234567
out_is "Local call: 0,234567"
run 0 dial --area-code-locally 49 89 1234567
has "Local call: "
run 0 dial 49 89 "=0815"
has "0815"
# From New York: local, long distance, North-American neighbour, abroad.
run 0 dial --location "new york" 1 212 5551234
out_is "Local call: 9,*70,5551234"
run 0 dial --location "New York" 1 415 5551234
out_is "Long-distance call: 8,*70,1-415-5551234"
run 0 dial --location "New York" 242 "" 3561234
out_is "Long-distance call: 8,*70,1-242-3561234"
run 0 dial --location "New York" --json 49 89 1234567
check "dial result as JSON" python3 -c '
import json, sys
v = json.loads(sys.argv[1])
assert v == {"location": "New York", "rule": "International call",
             "dialable": "8,*70,011-49-89-1234567",
             "displayable": "8,*70,011-49-89-1234567"}, v' "$out"
run 0 dial --lang DEU 44 171 2345678
has "0,00-44-171-2345678"

run 0 locations show "New York"
has "country                United States of America (id 1), +1"
has "call-waiting           *70,"
run 0 locations set "New York" --call-waiting "" --suffix "#"
run 0 locations show --json "New York"
check "changed settings" python3 -c '
import json, sys
v = json.loads(sys.argv[1])
assert v["call_waiting"] == "" and v["dial_suffix"] == "#" and v["area_codes"] == "212,718", v' "$out"
run 0 locations current "New York"
run 0 locations current --json
check "current as JSON" python3 -c '
import json, sys
assert json.loads(sys.argv[1]) == {"index": 1, "name": "New York"}' "$out"
run 0 dial 1 212 5551234
out_is "Local call: 9,5551234-#"

# The telephony service's translation is not there: a failure, not a guess.
run 0 locations set "New York" --tapi on
run 1 dial 1 212 5551234
err_has "telephony service"

run 1 locations add "new york" --country 1
err_has "(status 0x24004407)"
run 1 locations add Nowhere --country 9999
err_has "no country has this id"
run 2 locations add Nowhere
run 2 locations set "New York" --tapi maybe
run 1 locations show Paris
run 1 locations set Paris --area 1
run 1 locations current Paris
run 1 dial --location Paris 1 2 3
run 0 locations add "New" --country 1
run 1 locations delete "New"
err_has "begins with this name"
run 0 locations delete "New York"
run 0 locations delete "New"
run 1 locations delete "New York"
run 0 locations list --json
check "one location left" python3 -c '
import json, sys
assert [l["name"] for l in json.loads(sys.argv[1])] == ["München Büro"]' "$out"
run 2 dial 44 171
run 2 locations
