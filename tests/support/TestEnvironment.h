#pragma once

#include <QString>

// Pins what the tests' expected texts depend on: the locale (English, United
// States: "," groups digits, "." is the decimal point) and a UTF-8 C locale.
void PrepareTestEnvironment();

// The folder of the real-world sample media committed with the tests.
QString SampleMediaFolder();
