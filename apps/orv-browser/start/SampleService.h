#pragma once

#include <functional>
#include <memory>

#include <QObject>
#include <QProcess>
#include <QTemporaryDir>

#include "apps/orv-browser/SharedSettings.h"

/// A catalog service on this machine with sample content, for a first look: `orv-library` writes the content
/// and serves it, as long as it is wanted. Lives on the interface thread.
class SampleService : public QObject
{
    Q_OBJECT

public:
    explicit SampleService(QObject* parent = nullptr);
    ~SampleService() override;

    /// Whether the program is installed, beside this one or on the path.
    static bool isThere() { return !program().isEmpty(); }
    /// Writes the content and serves it; `ready` or `failed` follows.
    void start();
    /// Ends the service and removes what was written.
    void stop();
    bool isRunning() const { return mProcess != nullptr; }

Q_SIGNALS:
    /// @param service where it is, and all that it has
    void ready(const ServiceOverrides& service);
    /// @param reason for people
    void failed(const QString& reason);

private:
    static QString program();
    void serve();
    void run(const QStringList& arguments, const std::function<void(bool)>& ended);
    void addressCame();
    void fail();
    QStringList listed(const QString& kind) const;

    std::unique_ptr<QTemporaryDir> mFolder;
    std::unique_ptr<QProcess> mProcess;
};
