#pragma once

#include <cstddef>

// The C interface of libmediainfo, wide-character variant: the calls the
// program and its benchmarks make.
extern "C" {
void* MediaInfo_New();
void MediaInfo_Delete(void* handle);
std::size_t MediaInfo_Open(void* handle, const wchar_t* file);
void MediaInfo_Close(void* handle);
const wchar_t* MediaInfo_Inform(void* handle, std::size_t reserved);
const wchar_t* MediaInfo_Option(void* handle, const wchar_t* option, const wchar_t* value);
}
