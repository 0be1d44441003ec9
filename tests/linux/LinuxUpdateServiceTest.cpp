// SPDX-License-Identifier: MIT
// The whole way of an update check: this process's loop, the program that reads feeds, keys and signatures.
#include "linux/base/LinuxUpdateService.h"

#include "linux/LinuxProcessRunner.h"
#include "linux/PrivateBus.h"
#include "linux/QtLoop.h"
#include "linux_base/MemoryDefaults.h"
#include "linux_base/RecordedLog.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

using Kind = UpdateFinding::Kind;

struct NoRegistry final : DeviceRegistry {
    std::optional<std::vector<std::optional<Dictionary>>> matchingServices(std::string_view) override {
        return {};
    }
};

struct Installation {
    Installation() { key = signFeed({QStringLiteral("--new-key"), pem}).trimmed().toStdString(); }
    static QByteArray signFeed(const QStringList& arguments) {
        QProcess process;
        process.start(QStringLiteral(KIVO_SIGN_FEED), arguments);
        process.waitForFinished();
        return process.readAllStandardOutput();
    }
    void publish(const QByteArray& text) {
        QFile plain(folder.filePath(QStringLiteral("feed.json")));
        if (plain.open(QIODevice::WriteOnly))
            plain.write(text);
        plain.close();
        QFile signedFeed(folder.filePath(QStringLiteral("feed")));
        if (signedFeed.open(QIODevice::WriteOnly))
            signedFeed.write(signFeed({pem, plain.fileName()}));
    }
    void publish(const char* version, int serial) {
        publish(QByteArray(R"({"application": "io.github.kivo.Kivo", "serial": )") +
                QByteArray::number(serial) + R"(, "releases": [{"version": ")" + version +
                R"(", "page": "https://example.org/"}]})");
    }
    std::optional<UpdateFinding> check(const std::string& withKey) {
        LinuxUpdateService service(loop, runner, defaults, log,
                                   {"file://" + folder.filePath(QStringLiteral("feed")).toStdString(), withKey,
                                    "1.0", KIVO_UPDATES_PROGRAM});
        std::optional<UpdateFinding> finding;
        service.onFinding = [&](const UpdateFinding& found) { finding = found; };
        service.start();
        service.checkForUpdates();
        EXPECT_FALSE(finding) << "never within the call";
        eventually([&] { return finding.has_value(); }, 30'000);
        return finding;
    }

    QTemporaryDir folder;
    QString pem = folder.filePath(QStringLiteral("key.pem"));
    std::string key;
    QtLoop loop;
    NoRegistry registry;
    LinuxProcessRunner runner{loop, registry};
    MemoryDefaults defaults;
    RecordedLog log;
};

TEST(LinuxUpdateService, aSignedFeedBecomesAFinding) {
    Installation installation;
    installation.publish("1.1", 4);
    auto finding = installation.check(installation.key);
    ASSERT_TRUE(finding);
    EXPECT_EQ(finding->kind, Kind::available) << testing::PrintToString(installation.log.lines());
    EXPECT_EQ(finding->releases.at(0).version, "1.1");
    installation.publish("1.0", 5);
    EXPECT_EQ(installation.check(installation.key)->kind, Kind::upToDate);
    installation.publish("9.0", 4);
    EXPECT_EQ(installation.check(installation.key)->kind, Kind::refused) << "replayed";
    installation.publish("9.0", 6);
    EXPECT_EQ(installation.check("AAAA" + installation.key.substr(4))->kind, Kind::refused) << "another key";
    QFile::remove(installation.folder.filePath(QStringLiteral("feed")));
    EXPECT_EQ(installation.check(installation.key)->kind, Kind::unreachable);
}

} // namespace
} // namespace kivo
