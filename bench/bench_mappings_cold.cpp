// The audio page of 1 to 20 mappings on 1 to 100 devices of 32 cards each, from its construction
// until it is first seen ("first_sight") and until every mapping has all its boxes ("all_boxes"),
// beside a page of as many raw controls in the same look. Variants are "floor/20x100" and so on:
// mappings x devices.

#include "mivohostkit/runtimethread.h"
#include "once.h"
#include "support/hostlanguage.h"
#include "support/teststore.h"

#include <mivosettingswidgets/audiosettingbox.h>
#include <mivostyle/style.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>

#include <memory>

namespace {

constexpr int cardCount = 32;

std::string cardId(int card)
{
    return "alsa_output.usb-interface." + std::to_string(100 + card);
}

std::string cardName(int card)
{
    return "USB interface, output " + std::to_string(card);
}

/// This machine is the first device.
std::string deviceName(int device)
{
    return device == 0 ? std::string() : "node-" + std::to_string(device);
}

std::unique_ptr<QScrollArea> shown(QWidget* page)
{
    auto area = std::make_unique<QScrollArea>();
    area->setWidget(page);
    area->setWidgetResizable(true);
    area->resize(1000, 700);
    area->show();
    QApplication::processEvents();
    return area;
}

std::unique_ptr<QScrollArea> makeFloor(int mappings, int devices)
{
    QStringList texts{"None"};
    for (int card = 0; card < cardCount - mappings + 1; ++card) { // the others are taken
        texts.append(QString::fromStdString(cardName(card)));
    }
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    for (int mapping = 0; mapping < mappings; ++mapping) {
        auto* line = new QHBoxLayout;
        line->addWidget(new QLabel("Name"));
        line->addWidget(new QLineEdit);
        line->addWidget(new QPushButton("Delete"));
        column->addLayout(line);
        auto* grid = new QGridLayout;
        column->addLayout(grid);
        for (int device = 0; device < devices; ++device) {
            auto* cell = new QVBoxLayout;
            auto* combo = new QComboBox;
            combo->addItems(texts);
            cell->addWidget(new QLabel("Device"));
            cell->addWidget(combo);
            grid->addLayout(cell, device / 3, device % 3);
        }
    }
    return shown(page);
}

/// Every mapping with a card on every device, as a store keeps them.
QString mappingsAsKept(int mappings, int devices)
{
    QJsonArray all;
    for (int mapping = 1; mapping <= mappings; ++mapping) {
        QJsonArray chosen;
        for (int device = 0; device < devices; ++device) {
            chosen.append(QJsonObject{{"device", QString::fromStdString(deviceName(device))},
                                      {"id", QString::fromStdString(cardId(mapping))},
                                      {"caption", QString::fromStdString(cardName(mapping))},
                                      {"channels", 2},
                                      {"channelPairs", 1}});
        }
        all.append(QJsonObject{{"id", mapping},
                               {"name", QStringLiteral("Output %1").arg(mapping)},
                               {"soundCards", chosen}});
    }
    const QJsonObject kept{{"nextId", mappings + 1}, {"mappings", all}};
    return QString::fromUtf8(QJsonDocument(kept).toJson(QJsonDocument::Compact));
}

void addDevices(TestStore& store, int count)
{
    std::vector<mivo::settings::STSoundCardInfo> cards;
    for (int card = 0; card < cardCount; ++card) {
        cards.push_back({cardId(card), cardName(card), 2});
    }
    for (int device = 0; device < count; ++device) {
        store.soundCards().setDeviceSoundCards(deviceName(device), "", cards);
    }
}

} // namespace

int main(int argc, char** argv)
{
    const QString variant = argc == 2 ? QString::fromLatin1(argv[1]) : QString();
    if (variant == "--variants") {
        for (const char* kind : {"floor", "first_sight", "all_boxes"}) {
            for (const int mappings : {1, 5, 20}) {
                for (const int devices : {1, 10, 100}) {
                    std::printf("%s/%dx%d\n", kind, mappings, devices);
                }
            }
        }
        return 0;
    }
    const QApplication application(argc, argv);
    mivo::style::apply(mivo::style::Look::dark);
    useHostLanguage("en");
    const QString size = variant.section('/', 1);
    const int mappings = size.section('x', 0, 0).toInt();
    const int devices = size.section('x', 1).toInt();
    if (variant.startsWith("floor/")) {
        return once::measure([=] { return makeFloor(mappings, devices); });
    }
    mivohost::RuntimeThread runtime;
    TestStore store({{"soundCardMappings", mappingsAsKept(mappings, devices)}});
    runtime.call([&] { addDevices(store, devices); });
    const bool all = variant.startsWith("all_boxes/");
    return once::measure([&] {
        auto* page = new mivo::settings::AudioSettingBox;
        page->setZRRuntime(&runtime);
        page->setSettings(&store);
        runtime.call([&store] { store.soundCards().announceMappings(); });
        auto area = shown(page);
        while (all && page->findChildren<QComboBox*>().size() < mappings * devices) {
            QApplication::processEvents();
        }
        return area;
    });
}
