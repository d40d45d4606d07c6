#pragma once

// Makes sure the C library's character handling (LC_CTYPE) is UTF-8, so that
// file names with letters beyond ASCII pass intact to libraries that convert
// wide text to bytes through it. A UTF-8 LC_CTYPE is kept as it is; else the
// user's locale from the environment is taken when it is UTF-8, and C.UTF-8
// when it isn't. Cheap when nothing needs to change.
// Returns true when LC_CTYPE is UTF-8 afterwards.
bool EnsureUtf8CLocale();

// True when the current LC_CTYPE uses the UTF-8 encoding.
bool CLocaleIsUtf8();
