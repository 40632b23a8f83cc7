# zq countries: the list in the language module's language.
run 0 countries
has "   id   code  prefix  name"
has "   49     49       0  Germany"
has "    1      1       0  United States of America"
has "  123    340       1  United States Virgin Islands"
run 0 countries --lang deu --json
check "German names, ids and codes as JSON" python3 -c '
import json, sys
rows = json.loads(sys.argv[1])
by_id = {r["id"]: r for r in rows}
assert by_id[49]["name"] == "Deutschland" and by_id[49]["code"] == 49, by_id[49]
assert len(rows) > 200, len(rows)' "$out"
run 1 countries --lang XYZ
err_has "ZQGBLXYZ.DLL: the module cannot be found (error 126, ERROR_MOD_NOT_FOUND)"
run 2 countries --lang de
run 2 countries extra
