#pragma once

#include <QString>
#include <QUrl>

#include <functional>
#include <optional>

// How a sign-in in the browser came back.
struct GoogleAuthenticationResult {
    enum class Failure { cancelled, other };
    std::optional<QUrl> callbackURL;
    std::optional<Failure> error;
};

// A sign-in sheet of the platform over the program's window, with the browser's own cookies, that
// comes back through a link. Not every platform has one.
class WebAuthentication {
public:
    using Completion = std::function<void(const GoogleAuthenticationResult&)>;
    virtual ~WebAuthentication() = default;

    // Gives whether it started; only then the completion is called, once. Starting again cancels
    // what still runs, whose completion is not called any more.
    virtual bool start(const QUrl& url, const QString& callbackScheme, Completion completion) = 0;
};
