#include "mivowidgets/shortcutcover.h"

#include "mivowidgets/accessible_p.h"

#include <QtCore/QMetaEnum>
#include <QtCore/QPointer>
#include <QtCore/QStringList>
#include <QtGui/QGuiApplication>
#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QStyleOption>
#include <QtWidgets/QToolButton>

#include <string_view>

namespace mivo::widgets {

namespace {

const QString separator = QStringLiteral(" + ");

struct Modifier
{
    Qt::KeyboardModifier modifier;
    const char* name;
};

constexpr Modifier modifiersInOrder[]{{Qt::ControlModifier, "Ctrl"},
                                      {Qt::ShiftModifier, "Shift"},
                                      {Qt::AltModifier, "Alt"},
                                      {Qt::MetaModifier, "Win"}};

const QLatin1String deadKey("Dead_"); // the names of keys that only accent the next one

unsigned allGivenTexts = 0;

/// The letter that the US layout has at the place of a key, or 0.
int usLetterAt(quint32 scanCode)
{
    const QString platform = QGuiApplication::platformName();
    const bool isX11 = platform == QLatin1String("xcb") || platform.startsWith("wayland");
    const quint32 place = scanCode - (isX11 ? 8 : 0); // as Linux and Windows number the keys
    constexpr struct
    {
        quint32 first;
        std::string_view letters;
    } rows[]{{16, "QWERTYUIOP"}, {30, "ASDFGHJKL"}, {44, "ZXCVBNM"}};
    for (const auto& row : rows) {
        if (place >= row.first && place < row.first + row.letters.size()) {
            return row.letters[place - row.first];
        }
    }
    return 0;
}

} // namespace

QString keySequenceText(const QKeyEvent& event)
{
    constexpr int lastOfLatin1 = 0xFF;
    constexpr int lastOfPlane = 0xFFFF;
    const int key = event.key();
    const bool isCommand =
        event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    if (isCommand && key > lastOfLatin1 && key <= lastOfPlane) {
        const QChar letter(key);
        if (letter.isLetter() && letter.script() != QChar::Script_Latin) {
            const int latin = usLetterAt(event.nativeScanCode());
            return keySequenceText(latin != 0 ? latin : key, event.modifiers());
        }
    }
    return keySequenceText(key, event.modifiers());
}

QString keySequenceText(int key, Qt::KeyboardModifiers modifiers)
{
    switch (key) {
    case 0:
    case Qt::Key_unknown:
    case Qt::Key_Control:
    case Qt::Key_Shift:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
        return {};
    case Qt::Key_Meta:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
        return QStringLiteral("Win");
    default:
        break;
    }
    const QString enumName =
        QString::fromLatin1(QMetaEnum::fromType<Qt::Key>().valueToKey(key)).mid(4); // "Key_"
    const QString name = enumName.startsWith(deadKey)
                             ? enumName // Qt has no name for it that it reads back
                             : QKeySequence(key).toString(QKeySequence::PortableText);
    if (name.isEmpty() || !name.at(0).isPrint()) {
        return {};
    }
    QStringList names;
    for (const Modifier& entry : modifiersInOrder) {
        if (modifiers.testFlag(entry.modifier)) {
            names.append(QString::fromLatin1(entry.name));
        }
    }
    names.append(name);
    return names.join(separator);
}

QKeySequence keySequenceOf(const QString& text)
{
    QStringList names = text.split(separator);
    int key = 0;
    while (names.size() > 1) {
        const QString name = names.takeFirst();
        int modifier = 0;
        for (const Modifier& entry : modifiersInOrder) {
            if (name == QLatin1String(entry.name)) {
                modifier = static_cast<int>(entry.modifier);
            }
        }
        if (modifier == 0 || (key & modifier) != 0) {
            return {};
        }
        key |= modifier;
    }
    if (names.first().startsWith(deadKey)) {
        const QByteArray name = "Key_" + names.first().toLatin1();
        const int dead = QMetaEnum::fromType<Qt::Key>().keyToValue(name.constData());
        return dead > 0 ? QKeySequence(key | dead) : QKeySequence();
    }
    const QKeySequence last(names.first(), QKeySequence::PortableText);
    if (last.count() != 1 || last[0] == Qt::Key_unknown
        || (last[0] & static_cast<int>(Qt::KeyboardModifierMask)) != 0) {
        return {};
    }
    return {key | last[0]};
}

ShortCutCover::ShortCutCover(EnumShortCutType index, const std::string& path, QWidget* covered)
    : ShortCutCover(ShortCutModuleIndex, index, path, covered)
{}

ShortCutCover::ShortCutCover(const std::string& path, QWidget* covered)
    : ShortCutCover(ShortCutModulePath, ShortCutOfPath, path, covered)
{}

ShortCutCover::ShortCutCover(ShortCutModuleType module, EnumShortCutType index,
                             const std::string& path, QWidget* covered)
    : QWidget(covered), m_module(module), m_index(index), m_path(path),
      m_clear(new QToolButton(this)), m_focusPolicy(covered->focusPolicy())
{
    useAccessibleInterfaces();
    setFocusPolicy(Qt::StrongFocus);
    m_clear->setText(QStringLiteral("×"));
    m_clear->setFocusPolicy(Qt::NoFocus); // the keyboard clears with Backspace
    m_clear->hide();
    connect(m_clear, &QToolButton::clicked, this, &ShortCutCover::clearBinding);
    covered->installEventFilter(this);
    setGeometry(covered->rect());
    hide();
}

void ShortCutCover::setClearText(const QString& text)
{
    m_clear->setToolTip(text);
    m_clear->setAccessibleName(text);
}

void ShortCutCover::shortCutStrChanged(const QString& text)
{
    setText(PeripheralKeyboard, text);
}

void ShortCutCover::updateShortCutCoverKey(EnumPeripheralShortCutType kind, const QString& text)
{
    setText(kind, text);
}

unsigned ShortCutCover::givenTexts()
{
    return allGivenTexts;
}

void ShortCutCover::setText(EnumPeripheralShortCutType kind, const QString& text)
{
    ++allGivenTexts;
    if (text.isEmpty()) {
        m_texts.remove(kind);
    } else {
        m_texts[kind] = text;
    }
    m_clear->setVisible(!keyText(m_kind).isEmpty());
    setAccessibleDescription(keyText(m_kind));
    update();
}

void ShortCutCover::setShortCoverVisible(bool visible, EnumPeripheralShortCutType kind)
{
    m_kind = kind;
    setText(kind, keyText(kind));
    setAccessibleName(parentWidget()->accessibleName().isEmpty()
                          ? parentWidget()->property("text").toString()
                          : parentWidget()->accessibleName());
    setVisible(visible);
    if (visible) {
        raise();
    }
}

void ShortCutCover::acceptEventState(bool accepts)
{
    if (m_blocked == !accepts) {
        return;
    }
    m_blocked = !accepts;
    if (m_blocked) {
        m_focusPolicy = parentWidget()->focusPolicy();
    }
    parentWidget()->setFocusPolicy(m_blocked ? Qt::NoFocus : m_focusPolicy);
}

ShortCutCover::~ShortCutCover()
{
    acceptEventState(true); // the control may stay
}

void ShortCutCover::setShortCoverClearFocus()
{
    clearFocus();
}

bool ShortCutCover::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        event->accept(); // what is pressed here is bound, and triggers nothing
        return true;
    }
    return QWidget::event(event);
}

bool ShortCutCover::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Resize:
        setGeometry(parentWidget()->rect());
        break;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::ContextMenu:
    case QEvent::DragEnter:
    case QEvent::Drop:
        return m_blocked;
    case QEvent::Wheel: // of what lies below; the page still scrolls
        event->setAccepted(!m_blocked);
        return m_blocked;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void ShortCutCover::resizeEvent(QResizeEvent* event)
{
    const int side = qMin(18, height() - 4);
    m_clear->setGeometry(width() - side - 2, height() - side - 2, side, side);
    QWidget::resizeEvent(event);
}

void ShortCutCover::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        emit signalCoverEsc();
    } else if ((event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete)
               && event->modifiers() == Qt::NoModifier) {
        clearBinding();
    } else if (m_kind == PeripheralKeyboard && !event->isAutoRepeat()) {
        const QString text = keySequenceText(*event);
        if (!text.isEmpty()) {
            bindKeys(text);
        }
    }
}

void ShortCutCover::bindKeys(const QString& text)
{
    // Each question may open a dialog, and the host may take the cover away meanwhile.
    const QPointer<ShortCutCover> self(this);
    const std::string bytes = text.toStdString();
    const bool refused = emit signalCheckRepeat(text);
    if (self && !refused) {
        const bool exists = emit signalExistShortCutsItem(m_index, m_path, bytes);
        if (self && !exists) {
            setText(PeripheralKeyboard, text);
            emit signalAddShortCutsItem(m_index, m_path, bytes, m_module);
        }
    }
    if (self) {
        emit signalKeyEventComplete();
    }
}

void ShortCutCover::clearBinding()
{
    if (keyText(m_kind).isEmpty()) {
        return;
    }
    setText(m_kind, QString());
    if (m_kind == PeripheralKeyboard) {
        emit signalDelShortCutsItem(m_index, m_path, m_module);
    } else {
        emit signalDelPeripheralBind(m_index, m_path);
    }
}

void ShortCutCover::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    update();
    if (m_kind != PeripheralKeyboard && isVisible()) {
        emit signalSetPeripheralBind(m_index, m_path);
    }
}

void ShortCutCover::mousePressEvent(QMouseEvent* event)
{
    event->accept(); // not for the control below
}

void ShortCutCover::paintEvent(QPaintEvent* /*event*/)
{
    QStyleOption option;
    option.initFrom(this);
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
    const QRect area = rect().adjusted(6, 4, m_clear->isVisible() ? -22 : -6, -4);
    painter.setPen(option.palette.color(QPalette::WindowText));
    painter.drawText(area, Qt::AlignHCenter | Qt::AlignBottom, // below the text of a high button
                     fontMetrics().elidedText(keyText(m_kind), Qt::ElideMiddle, area.width()));
}

} // namespace mivo::widgets
