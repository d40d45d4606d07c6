#pragma once

#include <QString>
#include <QStringList>

// What the MPEG-2 tool says of the streams of a remake: it lists the input's
// streams ("  Stream #0:0[0x1bf]: Data: dvd_nav_packet") and then, under
// "Stream mapping:", which of them go into the output ("  Stream #0:1 ->
// #0:0 (copy)"). The streams of the input that no mapping line names are
// those the remake left out, each as the tool described it. Empty when the
// text holds no mapping (a tool that failed before it, or another tool).
QStringList LeftOutStreams(const QString& toolOutput);
