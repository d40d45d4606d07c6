#pragma once

#include <QStringList>

// Runs ffmpeg with the arguments, without input, overwriting its outputs and
// with its errors on the benchmark's standard error; true when it ended with
// status 0.
bool RunFfmpeg(const QStringList& arguments);
