#pragma once

#include "base/hosttext.h"
#include "cluster/showsetup.h"
#include "cluster/synchroniser.h"

#include "support/test.h"

/// A machine of the show as the program makes it, but for its windows.
class Node
{
public:
    /// In `folder` are the files; empty: in one of its own.
    explicit Node(const QString& name, const QString& folder = {})
        : m_name(name), m_folder(folder.isEmpty() ? m_own.path() : folder)
    {}
    ~Node() { stop(); }

    /// `prepare` comes before the connection.
    void start(const mivohost::EtcdServers& servers, const std::function<void()>& prepare = {})
    {
        stop();
        const mivohost::ShowSetup setup = setupWith(servers);
        runtime.call([&] {
            auto opened = mivohost::SqlitePersistence::open(setup.path(QDir(m_folder)));
            ASSERT_TRUE(opened.persistence);
            QString error;
            auto shared = setup.share(std::move(opened.persistence), {}, error);
            ASSERT_TRUE(shared) << error;
            m_shared = shared.get();
            store = std::make_unique<mivohost::SettingsStore>(std::move(shared));
        });
        m_synchroniser = std::make_unique<mivohost::Synchroniser>(runtime, *m_shared,
                                                                  store->soundCards(), setup);
        QObject::connect(m_synchroniser.get(), &mivohost::Synchroniser::lost,
                         [this](const mivohost::LostChange& change) { lost.push_back(change); });
        if (prepare) {
            prepare();
        }
        m_synchroniser->start();
    }
    void start(const QStringList& hosts, const std::function<void()>& prepare = {})
    {
        start(mivohost::EtcdServers{hosts, false, {}, {}, {}}, prepare);
    }
    mivohost::ShowSetup setupWith(const mivohost::EtcdServers& servers) const
    {
        return {"Show-1", servers, "id-" + m_name, m_name};
    }
    mivohost::Synchroniser& synchroniser() { return *m_synchroniser; }
    void stop()
    {
        m_synchroniser.reset();
        runtime.call([this] { store.reset(); });
    }

    /// Calls with the store on the runtime thread.
    template <typename Work>
    auto call(Work work)
    {
        return runtime.call([&] { return work(*store); });
    }
    void set(int undoStep)
    {
        call([undoStep](auto& settings) { settings.setUndoStep(undoStep); });
    }
    int undoStep()
    {
        return call([](auto& settings) { return settings.getUndoStep(); });
    }
    void setAgain(const mivohost::LostChange& change) { m_synchroniser->setAgain(change); }
    const mivohost::Synchroniser::State& state() const { return m_synchroniser->state(); }

    /// Whether a reason with this part in it is told of the connection, and a table has its text.
    bool isToldInChinese(const QString& part = {}) const
    {
        const QString& reason = state().reason;
        mivohost::switchTexts("zh_cn");
        const bool isKnown = mivohost::reasonText(reason) != reason;
        mivohost::switchTexts("en");
        return isKnown && reason.contains(part);
    }

    testing::AssertionResult becomes(const std::function<bool()>& isSo, int most = 30000)
    {
        return testing::AssertionResult(QTest::qWaitFor(isSo, most))
               << m_name << ": " << undoStep() << ", connected " << state().isConnected
               << ", waiting " << state().waiting << ", " << state().reason;
    }
    testing::AssertionResult shows(int undoStep)
    {
        return becomes([&] { return this->undoStep() == undoStep; });
    }
    testing::AssertionResult isConnected()
    {
        return becomes([this] { return state().isConnected && state().waiting == 0; });
    }

    std::vector<mivohost::LostChange> lost;
    TestRuntime runtime;
    std::unique_ptr<mivohost::SettingsStore> store;

private:
    QTemporaryDir m_own;
    QString m_name;
    QString m_folder;
    mivohost::SharedSettings* m_shared = nullptr; // belongs to the store
    std::unique_ptr<mivohost::Synchroniser> m_synchroniser;
};
