#include <mivowidgets/shortcutcover.h>

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    using namespace mivo::widgets;
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char*>(bytes), static_cast<int>(size));
    const QKeySequence sequence = keySequenceOf(text);
    if (sequence.isEmpty()) {
        return 0;
    }
    // It is one key, whose own text, where it has one, means the same key.
    if (sequence.count() != 1) {
        std::abort();
    }
    const int modifiers = sequence[0] & static_cast<int>(Qt::KeyboardModifierMask);
    const QString name =
        keySequenceText(sequence[0] & ~modifiers, Qt::KeyboardModifiers(modifiers));
    if (!name.isEmpty() && name != QLatin1String("Win") && keySequenceOf(name) != sequence) {
        std::abort();
    }
    return 0;
}
