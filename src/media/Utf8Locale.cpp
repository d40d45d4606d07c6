#include "media/Utf8Locale.h"

#include <langinfo.h>

#include <clocale>
#include <cstring>
#include <initializer_list>

bool CLocaleIsUtf8() {
    const char* codeset = nl_langinfo(CODESET);
    return codeset != nullptr &&
           (std::strcmp(codeset, "UTF-8") == 0 || std::strcmp(codeset, "utf8") == 0);
}

bool EnsureUtf8CLocale() {
    if (CLocaleIsUtf8()) {
        return true;
    }
    // The user's own choice first (the environment), when it is UTF-8.
    if (std::setlocale(LC_CTYPE, "") != nullptr && CLocaleIsUtf8()) {
        return true;
    }
    for (const char* name : {"C.UTF-8", "C.utf8", "en_US.UTF-8"}) {
        if (std::setlocale(LC_CTYPE, name) != nullptr && CLocaleIsUtf8()) {
            return true;
        }
    }
    return false;
}
