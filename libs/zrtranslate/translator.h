#pragma once

#include "zrtranslate/export.h"

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>
#include <memory>

namespace velorn::trans {

/// Texts in several languages, out of Qt's compiled language files (.qm).
///
/// In a language file's source (.ts, edited with Qt Linguist) a text's catalogue is the context's
/// name, its context is the message's comment, and its key is the source text. A file's language
/// is the one that it declares itself. Only for the GUI thread.
class ZRTRANSLATE_EXPORT Translator
{
public:
    /// Takes the look-up that found no text.
    using MissingTextHandler =
        std::function<void(const QString& catalogue, const QString& context, const QString& key)>;

    Translator();
    ~Translator();

    /// Adds the texts of one .qm file, which may be a Qt resource, to its language. A file that was
    /// added before, by the same path, is not added again. False, and nothing added, when the file
    /// is missing, is no language file, or declares no language.
    bool load(const QString& file);

    /// Chooses the language of all look-ups from now on, for example "en" or "zh_cn"; the case of
    /// letters and the kind of the dash do not matter. Without a file for just that language, the
    /// nearest one serves: "en" for "en_US", "zh_cn" for "zh_Hans_CN" and for "zh". Until the first
    /// call, and where there is none, every key is its own text.
    void switchLanguage(const QString& language);

    /// The language of the texts, in lower case and with "_": "en", "zh_cn". The chosen one where
    /// no loaded language serves for it.
    QString language() const;

    /// The text in the chosen language, of the file loaded last where several have it. A key that
    /// has none is returned itself.
    QString translate(const QString& catalogue, const QString& context, const QString& key) const;

    /// What the other loaded languages say for every text that was found so far, by the text in the
    /// chosen language: for a search that knows what is shown, and not its key.
    QHash<QString, QStringList> otherTexts() const;

    /// Called for every look-up that a chosen language has no text for. Null drops the handler.
    void setMissingTextHandler(MissingTextHandler handler);

private:
    class ZRTRANSLATE_NO_EXPORT Impl;
    std::unique_ptr<Impl> m_impl;
};

/// Same as translator.translate(catalogue, context, key).
ZRTRANSLATE_EXPORT QString translate(const Translator& translator, const QString& catalogue,
                                     const QString& context, const QString& key);

} // namespace velorn::trans
