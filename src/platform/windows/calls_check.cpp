/* Windows build only: holds every row of calls.h against the system's own declaration. */
#include <type_traits>

#include "platform/calls.h"
#include "platform/common_dialogs.h"
#include "platform/drawing.h"
#include "platform/files.h"
#include "platform/gdi.h"
#include "platform/glyphs.h"
#include "platform/help.h"
#include "platform/process.h"
#include "platform/profile.h"
#include "platform/registry.h"
#include "platform/resources.h"
#include "platform/sheet.h"
#include "platform/spooler.h"
#include "platform/text.h"
#include "platform/version.h"
#include "platform/window.h"

#define CHECK_CALL(result, name, params, failed) \
    static_assert(std::is_same_v<decltype(&name), result(WINAPI*) params>, #name " has another prototype");
ALL_CALLS(CHECK_CALL)
