// The shortcut file beside bare RapidJSON that reads and writes the same records; texts on covers
// beside a hash in which each cover looks its own up; a file of duplicates beside the same by hand;
// the check for conflicts beside a cover that asks a hash; OSC from the
// network to the manager's signal beside a bare server that counts.

#include "peripherals/oscservice.h"
#include "shortcutitems.h"

#include <mivosettingswidgets/shortcutfile.h>
#include <mivosettingswidgets/shortcutmgr.h>
#include <mivowidgets/shortcutcover.h>
#include <zrcutils/nocachefile.h>

#include <benchmark/benchmark.h>

#include <lo/lo.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>
#include <QtWidgets/QWidget>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <thread>
#include <unordered_map>

namespace {

using mivo::widgets::ShortCutCover;

// --- The file ---

void count(benchmark::State& state, const std::string& text)
{
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void loadFloor(benchmark::State& state)
{
    const auto text =
        mivo::settings::formatShortCuts(manyItems(static_cast<std::size_t>(state.range(0))));
    for (auto _ : state) {
        BareHandler handler;
        rapidjson::StringStream stream(text.c_str());
        rapidjson::Reader().Parse(stream, handler);
        benchmark::DoNotOptimize(handler.items.data());
    }
    count(state, text);
}

void loadOurs(benchmark::State& state)
{
    const auto text =
        mivo::settings::formatShortCuts(manyItems(static_cast<std::size_t>(state.range(0))));
    for (auto _ : state) {
        benchmark::DoNotOptimize(mivo::settings::parseShortCuts(text).data());
    }
    count(state, text);
}

void saveFloor(benchmark::State& state)
{
    const Items items = manyItems(static_cast<std::size_t>(state.range(0)));
    std::string text;
    const auto put = [](auto& writer, const std::string& string) {
        writer.String(string.data(), static_cast<rapidjson::SizeType>(string.size()));
    };
    for (auto _ : state) {
        rapidjson::StringBuffer buffer;
        rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
        writer.StartObject();
        writer.Key("shortCutInfoList");
        writer.StartArray();
        for (const STShortCutItem& item : items) {
            writer.StartObject();
            writer.Key("type");
            writer.Int(item.type);
            writer.Key("path");
            put(writer, item.path);
            writer.Key("shortCutStr");
            put(writer, item.shortCutStr);
            writer.EndObject();
        }
        writer.EndArray();
        writer.EndObject();
        text = std::string(buffer.GetString(), buffer.GetSize()); // made anew by every save
        benchmark::DoNotOptimize(text.data());
    }
    count(state, text);
}

void saveOurs(benchmark::State& state)
{
    const Items items = manyItems(static_cast<std::size_t>(state.range(0)));
    std::string text;
    for (auto _ : state) {
        text = mivo::settings::formatShortCuts(items);
        benchmark::DoNotOptimize(text.data());
    }
    count(state, text);
}

// --- Covers ---

/// As many covers as entries, bound to a manager that holds the entries.
struct Bound
{
    explicit Bound(std::size_t count) : items(manyItems(count))
    {
        QStandardPaths::setTestModeEnabled(true);
        path = mivo::settings::shortCutFilePath();
        QDir().mkpath(QFileInfo(path).path());
        for (const STShortCutItem& item : items) {
            auto* button = new QWidget(&window); // each cover has what it covers
            covers.append(new ShortCutCover(item.type, item.path, button));
        }
        STLinkShortCutInfo info;
        info.indexShortCutList = items;
        manager.setBindShortCutAndCover(covers);
        manager.shortCutInfoSave(info);
    }

    Items items;
    QString path;
    QWidget window;
    QList<ShortCutCover*> covers;
    mivo::settings::ShortCutMgr manager;
};

/// One for all of that size, for a large one takes seconds to make; it outlives the application.
/// Ours and the floor share it: how the covers lie in memory makes up to a third of the time.
Bound& boundWith(std::int64_t count)
{
    static std::map<std::int64_t, Bound*> made;
    Bound*& bound = made[count];
    if (bound == nullptr) {
        bound = new Bound(static_cast<std::size_t>(count));
    }
    return *bound;
}

void coversFloor(benchmark::State& state)
{
    Bound& bound = boundWith(state.range(0));
    for (auto _ : state) {
        std::unordered_map<int, const std::string*> texts; // covers come in any order
        texts.reserve(bound.items.size());
        for (const STShortCutItem& item : bound.items) {
            texts[item.type] = &item.shortCutStr;
        }
        for (ShortCutCover* cover : bound.covers) {
            cover->shortCutStrChanged(QString::fromStdString(*texts[cover->getShortCutIndex()]));
        }
        NoCacheFile::saveToFile(bound.path.toStdString(),
                                mivo::settings::formatShortCuts(bound.items));
    }
}

void coversOurs(benchmark::State& state)
{
    Bound& bound = boundWith(state.range(0));
    for (auto _ : state) {
        bound.manager.setAllShortCutStr();
    }
}

/// A file with many entries of the same few types: the last of each is kept.
Items manyOfFewTypes(std::size_t count)
{
    Items items = manyItems(count);
    for (std::size_t i = 0; i < items.size(); ++i) {
        items[i].type = items[i % 47].type;
    }
    return items;
}

void duplicatesFloor(benchmark::State& state)
{
    Bound bound(47);
    const std::string path = bound.path.toStdString();
    const auto text =
        mivo::settings::formatShortCuts(manyOfFewTypes(static_cast<std::size_t>(state.range(0))));
    for (auto _ : state) {
        NoCacheFile::saveToFile(path, text);
        std::string content(std::filesystem::file_size(path), '\0');
        std::ifstream(path, std::ios::binary)
            .read(content.data(), static_cast<std::streamsize>(content.size()));
        BareHandler handler;
        rapidjson::StringStream stream(content.c_str());
        rapidjson::Reader().Parse(stream, handler);
        handler.items.pop_back(); // begun, but never read
        std::unordered_map<int, const STShortCutItem*> last;
        for (const STShortCutItem& item : handler.items) {
            last[item.type] = &item;
        }
        for (ShortCutCover* cover : bound.covers) {
            cover->shortCutStrChanged(
                QString::fromStdString(last.at(cover->getShortCutIndex())->shortCutStr));
        }
        Items kept;
        for (const STShortCutItem& item : handler.items) {
            if (last[item.type] == &item) {
                kept.push_back(item);
            }
        }
        NoCacheFile::saveToFile(path, mivo::settings::formatShortCuts(kept));
    }
}

void duplicatesOurs(benchmark::State& state)
{
    Bound bound(47);
    const auto text =
        mivo::settings::formatShortCuts(manyOfFewTypes(static_cast<std::size_t>(state.range(0))));
    for (auto _ : state) {
        NoCacheFile::saveToFile(bound.path.toStdString(), text);
        bound.manager.loadShortCutInfoList();
        bound.manager.setAllShortCutStr();
    }
}

void conflictFloor(benchmark::State& state)
{
    std::unordered_map<std::string, STShortCutItem> holders;
    for (const STShortCutItem& item : manyItems(static_cast<std::size_t>(state.range(0)))) {
        holders.emplace(item.shortCutStr, item);
    }
    QWidget window;
    ShortCutCover cover(ShortCutOfPath, "/new", &window);
    QObject::connect(&cover, &ShortCutCover::signalExistShortCutsItem,
                     [&holders](EnumShortCutType /*type*/, const std::string& /*path*/,
                                const std::string& keys) { return holders.count(keys) != 0; });
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            emit cover.signalExistShortCutsItem(ShortCutOfPath, "/new", "Ctrl + F12"));
    }
}

void conflictOurs(benchmark::State& state)
{
    Bound& bound = boundWith(state.range(0));
    ShortCutCover* cover = bound.covers.first();
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            emit cover->signalExistShortCutsItem(ShortCutOfPath, "/new", "Ctrl + F12"));
    }
}

// --- OSC ---

constexpr int packets = 1000;
constexpr int port = 39127;

/// Sends packets until `arrived` has counted them all.
template <typename Wait>
void sendPackets(benchmark::State& state, const std::atomic<int>& arrived, Wait wait)
{
    const lo_address target = lo_address_new("127.0.0.1", std::to_string(port).c_str());
    int sent = arrived;
    for (auto _ : state) {
        for (int i = 0; i < packets; ++i) {
            lo_send(target, "/Peripherals/Stage/Take", "i", 1);
            // What the socket's buffer cannot hold is lost.
            if (++sent - arrived > 100) {
                wait(sent);
            }
        }
        wait(sent);
    }
    lo_address_free(target);
    state.SetItemsProcessed(state.iterations() * packets);
}

void oscFloor(benchmark::State& state)
{
    std::atomic<int> arrived{0};
    auto* server = lo_server_thread_new(std::to_string(port).c_str(), nullptr);
    if (server == nullptr) {
        state.SkipWithError("the port is in use");
        return;
    }
    lo_server_thread_add_method(
        server, nullptr, nullptr,
        [](const char* /*path*/, const char* /*types*/, lo_arg** /*arguments*/, int /*count*/,
           lo_message /*message*/, void* counter) {
            ++*static_cast<std::atomic<int>*>(counter);
            return 0;
        },
        &arrived);
    lo_server_thread_start(server);
    sendPackets(state, arrived, [&arrived](int sent) {
        while (arrived < sent) {
            std::this_thread::yield();
        }
    });
    lo_server_thread_free(server);
}

void oscOurs(benchmark::State& state)
{
    std::atomic<int> arrived{0};
    mivo::settings::ShortCutMgr manager;
    mivohost::OscService service;
    service.setInfo({true, port});
    manager.setOscMgr(&service);
    QObject::connect(&manager, &mivo::settings::ShortCutMgr::signalPeripheralsControl,
                     [&arrived] { ++arrived; });
    sendPackets(state, arrived, [&arrived](int sent) {
        while (arrived < sent) {
            QCoreApplication::processEvents();
            std::this_thread::yield();
        }
    });
}

BENCHMARK(loadFloor)->Name("load/floor")->Arg(100)->Arg(10000)->Arg(1000000);
BENCHMARK(loadOurs)->Name("load/ours")->Arg(100)->Arg(10000)->Arg(1000000);
BENCHMARK(saveFloor)->Name("save/floor")->Arg(100)->Arg(10000)->Arg(1000000);
BENCHMARK(saveOurs)->Name("save/ours")->Arg(100)->Arg(10000)->Arg(1000000);
BENCHMARK(coversFloor)->Name("covers/floor")->Arg(10000)->UseRealTime();
BENCHMARK(coversOurs)->Name("covers/ours")->Arg(10000)->UseRealTime();
BENCHMARK(duplicatesFloor)->Name("duplicates/floor")->Arg(10000)->Arg(160000)->UseRealTime();
BENCHMARK(duplicatesOurs)->Name("duplicates/ours")->Arg(10000)->Arg(160000)->UseRealTime();
BENCHMARK(conflictFloor)->Name("conflict/floor")->Arg(100)->Arg(10000);
BENCHMARK(conflictOurs)->Name("conflict/ours")->Arg(100)->Arg(10000);
BENCHMARK(oscFloor)->Name("osc/floor")->UseRealTime();
BENCHMARK(oscOurs)->Name("osc/ours")->UseRealTime();

} // namespace
