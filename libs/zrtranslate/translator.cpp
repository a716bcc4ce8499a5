#include "zrtranslate/translator.h"

#include <QtCore/QByteArrayList>
#include <QtCore/QSet>
#include <QtCore/QTranslator>

#include <map>
#include <utility>
#include <vector>

namespace velorn::trans {

namespace {

QString normalised(const QString& language)
{
    return language.toLower().replace('-', '_');
}

} // namespace

class Translator::Impl
{
public:
    // Newest first, so that a later file overrides an earlier one.
    using Files = std::vector<std::unique_ptr<QTranslator>>;

    using Languages = std::map<QString, Files>;

    /// The loaded language that serves for `name`: itself, else the same without its country or
    /// script, else the first one of another country.
    Languages::const_iterator nearest(QString name) const
    {
        const auto end = languages.end();
        while (true) {
            if (const auto same = languages.find(name); same != end) {
                return same;
            }
            const auto cut = name.lastIndexOf('_');
            if (cut == -1) {
                const auto next = languages.lower_bound(name + '_');
                return next != end && next->first.startsWith(name + '_') ? next : end;
            }
            name.truncate(cut);
        }
    }

    /// A text's catalogue, context and key, in UTF-8.
    using Name = QByteArrayList;

    static QString find(const Files& files, const Name& name)
    {
        for (const auto& texts : files) {
            QString text =
                texts->translate(name[0].constData(), name[2].constData(), name[1].constData());
            if (!text.isEmpty()) {
                return text;
            }
        }
        return {};
    }

    QSet<QString> loaded;
    QSet<Name> found; // as many as the files have at most
    Languages languages;
    const Files* active = nullptr;
    QString requested;
    QString language;
    MissingTextHandler missing;
};

Translator::Translator() : m_impl(std::make_unique<Impl>()) {}
Translator::~Translator() = default;

bool Translator::load(const QString& file)
{
    if (m_impl->loaded.contains(file)) {
        return true;
    }
    auto texts = std::make_unique<QTranslator>();
    if (!texts->load(file) || texts->language().isEmpty()) {
        return false;
    }
    auto& files = m_impl->languages[normalised(texts->language())];
    files.insert(files.begin(), std::move(texts));
    m_impl->loaded.insert(file);
    switchLanguage(m_impl->requested);
    return true;
}

void Translator::switchLanguage(const QString& language)
{
    m_impl->requested = normalised(language);
    const auto found = m_impl->nearest(m_impl->requested);
    const bool isLoaded = found != m_impl->languages.end();
    m_impl->active = isLoaded ? &found->second : nullptr;
    m_impl->language = isLoaded ? found->first : m_impl->requested;
}

QString Translator::language() const
{
    return m_impl->language;
}

QString Translator::translate(const QString& catalogue, const QString& context,
                              const QString& key) const
{
    if (m_impl->language.isEmpty()) {
        return key;
    }
    if (m_impl->active) {
        const Impl::Name name{catalogue.toUtf8(), context.toUtf8(), key.toUtf8()};
        QString text = Impl::find(*m_impl->active, name);
        if (!text.isEmpty()) {
            m_impl->found.insert(name);
            return text;
        }
    }
    if (m_impl->missing) {
        m_impl->missing(catalogue, context, key);
    }
    return key;
}

QHash<QString, QStringList> Translator::otherTexts() const
{
    QHash<QString, QStringList> others;
    if (!m_impl->active) {
        return others;
    }
    for (const Impl::Name& name : std::as_const(m_impl->found)) {
        const QString shown = Impl::find(*m_impl->active, name);
        for (const auto& [language, files] : m_impl->languages) {
            const QString text = Impl::find(files, name);
            if (!shown.isEmpty() && !text.isEmpty() && text != shown) {
                others[shown].append(text);
            }
        }
    }
    return others;
}

void Translator::setMissingTextHandler(MissingTextHandler handler)
{
    m_impl->missing = std::move(handler);
}

QString translate(const Translator& translator, const QString& catalogue, const QString& context,
                  const QString& key)
{
    return translator.translate(catalogue, context, key);
}

} // namespace velorn::trans
