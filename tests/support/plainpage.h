#pragma once

#include <mivosettingswidgets/isettingbox.h>

#include <QtWidgets/QLineEdit>
#include <QtWidgets/QVBoxLayout>

/// A page of a host's own, with one control.
class PlainPage : public mivo::settings::ISettingBox
{
public:
    explicit PlainPage(const QString& title, int priorityIndex = -1)
        : m_title(title), m_priorityIndex(priorityIndex)
    {
        auto* layout = new QVBoxLayout(this);
        layout->addWidget(new QLineEdit(title));
    }

    void setTitleText(const QString& text) override { m_title = text; }
    QString titleText() override { return m_title; }
    void setPriorityIndex(int index) override { m_priorityIndex = index; }
    int priorityIndex() const override { return m_priorityIndex; }
    void translateLanguage() override {}
    void switchLanguage(const QString& /*language*/) override {}
    void loadLanguageFiles(const std::vector<QString>& /*files*/) const override {}
    void setZRRuntime(IZRRuntime* /*runtime*/) override {}

private:
    QString m_title;
    int m_priorityIndex;
};
