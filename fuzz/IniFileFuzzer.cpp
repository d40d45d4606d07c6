// Any bytes as a settings file, with any section, key and value: reading never
// fails, and a plain value written is read back as written.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>

#include "FuzzSupport.h"
#include "app/IniFile.h"

namespace {

// Letters and digits only: names and values whose round trip the file's
// syntax cannot disturb.
bool isPlain(const QString& text) {
    if (text.isEmpty()) {
        return false;
    }
    for (const QChar c : text) {
        if (!(c.isLetterOrNumber() && c.unicode() < 128)) {
            return false;
        }
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    PrepareFuzzProcess();
    FuzzedDataProvider provider(data, size);
    const QString section = QString::fromStdString(provider.ConsumeRandomLengthString(24));
    const QString key = QString::fromStdString(provider.ConsumeRandomLengthString(24));
    const QString value = QString::fromStdString(provider.ConsumeRandomLengthString(300));
    const std::string content = provider.ConsumeRemainingBytesAsString();
    QString file =
        WriteFuzzFile(QStringLiteral("Settings.ini"),
                      reinterpret_cast<const std::uint8_t*>(content.data()), content.size());

    QString s = section, k = key, f = file;
    const QString before = ReadIniValue(s, k, f);
    if (before.size() > 254 || !s.isEmpty() || !k.isEmpty()) {
        std::abort();
    }

    QString ws = section, wk = key, wv = value, wf = file;
    const short result = WriteIniValue(ws, wk, wv, wf);
    if (!ws.isEmpty() || !wk.isEmpty() || !wv.isEmpty()) {
        std::abort();
    }
    QString rs = section, rk = key, rf = file;
    const QString after = ReadIniValue(rs, rk, rf);
    if (isPlain(section) && isPlain(key) && isPlain(value)) {
        if (result != -1 || after != value.left(254)) {
            std::abort();
        }
    }
    return 0;
}
