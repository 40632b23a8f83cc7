# zq reg: every value type, listing, failures and the REGEDIT4 round trip.
K='HKCU\Software\Zq,Inc.\Demo'

run 0 reg set "$K" Greeting "Grüß Gott"
run 0 reg set -t REG_DWORD "$K" Retries 0x10
run 0 reg set -t REG_DWORD "$K" Minus -1
run 0 reg query "$K" Minus
out_is "0xffffffff (4294967295)"
run 0 reg delete "$K" Minus
run 0 reg set -t REG_MULTI_SZ "$K" Ports COM1 COM2
run 0 reg set -t REG_BINARY "$K" Blob 01,02,ff
run 0 reg set -t expand_sz "$K" Path '%TEMP%\in'
run 0 reg set "$K" @ "the default"
run 0 reg set "$K\Sub\Deeper"

run 0 reg query "$K"
has "Greeting                 REG_SZ         Grüß Gott"
has "Retries                  REG_DWORD      0x00000010 (16)"
has "Ports                    REG_MULTI_SZ   COM1 | COM2"
has "Blob                     REG_BINARY     01 02 ff"
has "Path                     REG_EXPAND_SZ  %TEMP%\in"
has "@                        REG_SZ         the default"
has "Sub\\"

run 0 reg query "$K" Retries
out_is "0x00000010 (16)"
run 0 reg query --json "$K" Ports
check "multi-string as a JSON list" python3 -c '
import json, sys
v = json.loads(sys.argv[1])
assert v["type"] == "REG_MULTI_SZ" and v["data"] == ["COM1", "COM2"], v' "$out"
run 0 reg query --json "$K"
check "listing as JSON" python3 -c '
import json, sys
v = json.loads(sys.argv[1])
names = {x["name"]: x for x in v["values"]}
assert v["subkeys"] == ["Sub"], v
assert names["Retries"]["data"] == 16 and names["Greeting"]["data"] == "Grüß Gott", names
assert names["Blob"]["data"] == "01 02 ff" and names["@"]["type"] == "REG_SZ", names' "$out"

# The short and the full root name reach the same key.
run 0 reg query "HKEY_CURRENT_USER\Software\Zq,Inc.\Demo" Greeting
out_is "Grüß Gott"

# Failures: the library's code and its meaning; usage errors exit 2.
run 1 reg query "$K\Nope"
err_has "zq reg query: HKEY_CURRENT_USER\Software\Zq,Inc.\Demo\Nope: "
err_has "(error 2, ERROR_FILE_NOT_FOUND)"
run 1 reg query "$K" Nope
err_has "ERROR_FILE_NOT_FOUND"
run 1 reg delete "$K" Nope
err_has "ERROR_FILE_NOT_FOUND"
run 1 reg delete "$K\Nope"
err_has "ERROR_FILE_NOT_FOUND"
run 2 reg query 'Software\Zq'
err_has "does not begin with a root key"
long_name=$(printf 'k%.0s' {1..300})
run 1 reg set "HKCU\\$long_name" x y
err_has "(error 87, ERROR_INVALID_PARAMETER)"
run 2 reg query 'HKCC\System'
run 2 reg set -t REG_DWORD "$K" Retries many
run 2 reg set -t REG_QWORD "$K" Retries 1
run 2 reg set -t REG_BINARY "$K" Blob 0g
run 2 reg set "$K" Greeting one two
run 2 reg delete HKCU
run 2 reg
run 2 reg query
run 2 reg frobnicate

# Export, delete, import, export again: the same bytes.
run 0 reg export "$K" tree.reg
check "export wrote a file" test -s tree.reg
check "export begins with REGEDIT4 and CR LF" grep -q $'^REGEDIT4\r$' tree.reg
run 0 reg export "$K" -
check "export to standard output is the file" test "$(cat tree.reg)" = "$out"
run 0 reg delete "$K"
run 1 reg query "$K"
run 0 reg import tree.reg
run 0 reg export "$K" again.reg
check "export, import, export gives the same bytes" cmp tree.reg again.reg
run 0 reg query "$K\Sub"
has "Deeper\\"
run 0 reg import - <tree.reg

run 1 reg export "$K\Nope" nope.reg
err_has "the key does not exist"
run 1 reg import missing.reg
err_has "missing.reg"
printf 'REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Imported]\r\n"ok"="yes"\r\nnot a line\r\n' >bad.reg
run 1 reg import bad.reg
err_has "line 5"
# What came before the bad line stays applied.
run 0 reg query 'HKCU\Imported' ok
out_is "yes"

# A tree with awkward names and data survives export → import → export
# byte for byte: quotes and backslashes in names and texts, an empty text,
# a long binary value (continued lines), every type, nested keys, Latin-1.
T='HKLM\Software\Zq,Inc.\RoundTrip'
run 0 reg set "$T" 'say "hi"' 'C:\path\with "quotes"'
run 0 reg set "$T" Empty ""
run 0 reg set -t REG_BINARY "$T" Long "$(python3 -c 'print(",".join("%02x" % (i % 256) for i in range(300)))')"
run 0 reg set -t REG_MULTI_SZ "$T\Ä\Ö" Lines "eins" "zwei" "drei"
run 0 reg set -t REG_EXPAND_SZ "$T\Ä" Home '%USERPROFILE%\Zq'
run 0 reg set -t REG_DWORD "$T\Ä\Ö\Ü" Zero 0
run 0 reg set "$T\Leer"
run 0 reg export "$T" first.reg
check "long binary continued over lines" grep -q $',\\\\\r$' first.reg
run 0 reg delete "$T"
run 0 reg import first.reg
run 0 reg export "$T" second.reg
check "round trip of an awkward tree is byte for byte" cmp first.reg second.reg
run 0 reg query "$T" 'say "hi"'
out_is 'C:\path\with "quotes"'
