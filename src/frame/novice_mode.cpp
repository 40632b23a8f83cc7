#include "frame/novice_mode.h"

#include "diagnostics/version_resource.h"
#include "settings/global_config.h"

namespace {

constexpr DWORD kLocalMachine = 1;
constexpr char kNoviceMode[] = "NoviceMode";

}  // namespace

void ZqGblSetRegNoviceMode(BOOL bNoviceMode) {
    CZqVersionResource version;
    if (!version.ExtractVersionInfo()) {
        return;
    }
    CZqGlobalConfig config;
    config.SetValue(kLocalMachine, version.GetCurrentUserKey(), kNoviceMode,
                    static_cast<DWORD>(bNoviceMode));
}

BOOL ZqGblGetRegNoviceMode() {
    CZqVersionResource version;
    if (!version.ExtractVersionInfo()) {
        return FALSE;
    }
    CZqGlobalConfig config;
    DWORD value = 0;
    if (config.GetValue(kLocalMachine, version.GetCurrentUserKey(), kNoviceMode, value,
                        0xFFFFFFFFu) != 0) {
        return FALSE;
    }
    return static_cast<BOOL>(value);
}
