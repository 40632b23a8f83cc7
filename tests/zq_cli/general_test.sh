# The tool as a whole: help, usage errors, the prefix, the first run,
# info, version and the tour.
run 0 --help
has "Subcommands:"
for command in info reg ini countries xlat tools version tour \
    "reg query" "reg set" "reg delete" "reg export" "reg import" \
    "ini get" "ini set" "ini delete" "ini sections" "ini keys" \
    "xlat new" "xlat show" "xlat set" "xlat apply" \
    "tools list" "tools add" "tools remove" "tools run" dial locations \
    "locations list" "locations show" "locations add" "locations set" "locations delete" \
    "locations current" trace "trace status" "trace on" "trace off" "trace list" \
    "trace write" mailboxes "mailboxes list" "mailboxes add" "mailboxes remove" \
    "mailboxes default" "mailboxes path" modules "modules list" "modules install" \
    "modules enable" "modules disable"; do
    # shellcheck disable=SC2086
    run 0 $command --help
    has "Example"
done
check "help does not make the prefix" test ! -e "$ZQ_PREFIX"

run 2 frobnicate
run 2 info --bogus
run 2 info extra

# The first run sets up the installation once.
run 0 info
err_has "zq: new installation in $ZQ_PREFIX: made HKEY_LOCAL_MACHINE\\Software\\Zq,Inc.\\Zq Communication Suite\\1.0\\Users\\"
has "prefix               $ZQ_PREFIX"
has "Windows NT 4.0 (type 2)"
has "current user         Software\\Zq,Inc.\\Zq Communication Suite\\1.0\\Users\\"
run 0 info --json
check "said once" test -z "$err"
check "info as JSON" python3 -c '
import json, sys
v = json.loads(sys.argv[1])
assert v["prefix"] == sys.argv[2] and v["system"]["type"] == 2, v
assert v["key_layout"]["module_root"].endswith("\\Modules\\ZQ\\1.0"), v' "$out" "$ZQ_PREFIX"

# No command at all is the same as info.
run 0
has "zqgbl "
has "Key layout"

# --prefix overrides ZQ_PREFIX, before or after the subcommand.
run 0 --prefix "$PWD/other" info
has "prefix               $PWD/other"
err_has "new installation in $PWD/other"
run 0 info --prefix "$PWD/third"
has "prefix               $PWD/third"

# A system type other than NT, reported as the library sees it.
ZQ_WINVER=win95 run 0 info
has "(type 3)"

run 0 version "$zq_binary"
has "InternalName          ZQ"
run 0 version --json "$zq_binary"
check "version block as JSON" python3 -c '
import json, sys
v = json.loads(sys.argv[1])[0]
assert v["translations"][0]["strings"]["CompanyName"] == "Zq,Inc.", v' "$out"
run 1 version "$ZQ_PREFIX/registry.db"
err_has "zq version: $ZQ_PREFIX/registry.db: "
run 1 version missing.dll
err_has "ERROR_FILE_NOT_FOUND"
run 2 version

run 0 tour
has "New York office  -> Nassau, Bahamas  8,*70,1-242-3561234        Long-distance call"
has "== Version block of this program"
has "Greeting = \"Grüß Gott\""
has "\"atdt 0049 89 1234567\" -> \"ATDT 0049 89 1234567\""

# A prefix that cannot hold a registry: the setup and info say why.
touch not-a-folder
run 1 --prefix "$PWD/not-a-folder" info
err_has "zq setup: "
err_has "ERROR_REGISTRY_IO_FAILED"
err_has "zq info: key layout: cannot be derived"
