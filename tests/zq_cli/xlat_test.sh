# zq xlat: new, show, set and apply in both directions.
run 0 xlat new upper.xlt --get on -i a=A -i b=B -d "Upper case"
check "the file has 608 bytes" test "$(stat -c %s upper.xlt)" -eq 608
out=$(printf 'abc\n' | zq xlat apply upper.xlt)
check "input table applied" test "$out" = "ABc"
out=$(printf 'abc' | zq xlat apply --output upper.xlt)
check "output table off passes bytes unchanged" test "$out" = "abc"

run 0 xlat set upper.xlt -o 0x0A=0x0D -o c=C --put on
out=$(printf 'abc\n' | zq xlat apply --output upper.xlt | od -An -c | tr -s ' ')
check "output table applied" test "$out" = " a b C \\r"
run 0 xlat show upper.xlt
has "upper.xlt: Upper case"
has "input (get)   on, 2 byte(s) changed"
has "0x61 'a'   -> 0x41 'A'"
has "output (put)  on, 2 byte(s) changed"
run 0 xlat show --json upper.xlt
check "JSON of the table" python3 -c '
import json, sys
v = json.loads(sys.argv[1])
assert v["get"] and v["put"] and v["description"] == "Upper case", v
assert v["input"] == {"97": 65, "98": 66} and v["output"] == {"10": 13, "99": 67}, v' "$out"

run 0 xlat set upper.xlt --reset --get off
run 0 xlat show --json upper.xlt
check "reset tables" python3 -c '
import json, sys
v = json.loads(sys.argv[1])
assert v["input"] == {} and v["output"] == {} and not v["get"], v' "$out"

# Every byte value passes through.
run 0 xlat new all.xlt --get on -i 0x00=255 -i 255=0x00
head -c 256 /dev/zero >zeros
out=$(zq xlat apply all.xlt <zeros | od -v -An -tu1 | tr -s ' \n' ' ' | sed 's/ $//')
check "byte 0 becomes 255" test "$out" = " $(printf '255 %.0s' {1..255})255"

run 1 xlat show missing.xlt
err_has "(translation table status 2)"
printf 'short' >short.xlt
run 1 xlat show short.xlt
err_has "(translation table status 6)"
run 1 xlat apply short.xlt </dev/null
run 1 xlat set missing.xlt -i a=b
run 1 xlat new /nonexistent-folder/x.xlt
run 2 xlat set upper.xlt -i abc
run 2 xlat set upper.xlt -i a=256
run 2 xlat new upper.xlt --get maybe
run 2 xlat
