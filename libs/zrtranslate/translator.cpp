#include "zrtranslate/translator.h"

#include <QtCore/QByteArray>
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

    /// A catalogue's context, and the texts that were found in it, by key and language; as many as
    /// the files have at most.
    struct Context
    {
        QString catalogue;
        QString name;
        QByteArray catalogueBytes = catalogue.toUtf8(); // as the files have it
        QByteArray nameBytes = name.toUtf8();
        QHash<QString, QHash<const Files*, QString>> found{};

        QString find(const Files& files, const QString& key) const
        {
            const QByteArray bytes = key.toUtf8();
            for (const auto& texts : files) {
                QString text = texts->translate(catalogueBytes.constData(), bytes.constData(),
                                                nameBytes.constData());
                if (!text.isEmpty()) {
                    return text;
                }
            }
            return {};
        }
    };

    Context& contextOf(const QString& catalogue, const QString& name)
    {
        for (Context& context : contexts) { // hardly ever more than one
            if (context.name == name && context.catalogue == catalogue) {
                return context;
            }
        }
        contexts.push_back({catalogue, name});
        return contexts.back();
    }

    QSet<QString> loaded;
    std::vector<Context> contexts; // of which a text was looked up
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
    for (Impl::Context& context : m_impl->contexts) {
        for (auto& byLanguage : context.found) {
            byLanguage.remove(&files); // the new file may have another
        }
    }
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
        Impl::Context& texts = m_impl->contextOf(catalogue, context);
        QString text = texts.found.value(key).value(m_impl->active);
        if (!text.isEmpty()) {
            return text;
        }
        text = texts.find(*m_impl->active, key);
        if (!text.isEmpty()) {
            texts.found[key].insert(m_impl->active, text);
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
    for (const Impl::Context& context : m_impl->contexts) {
        for (auto found = context.found.begin(); found != context.found.end(); ++found) {
            const QString& key = found.key();
            const QString shown = context.find(*m_impl->active, key);
            for (const auto& [language, files] : m_impl->languages) {
                const QString text = context.find(files, key);
                if (!shown.isEmpty() && !text.isEmpty() && text != shown) {
                    others[shown].append(text);
                }
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
