#pragma once

#include <QString>
#include <QUrl>

#include <functional>
#include <optional>

// Result of a Google sign-in: the link with which it ended, or why it failed.
struct GoogleAuthenticationResult {
    enum class Failure { cancelled, other };
    std::optional<QUrl> callbackURL;
    std::optional<Failure> error;
};

// A sign-in page that the platform shows over the program's window, with the browser's cookies. It
// ends with a link to the program. Not every platform offers one.
class WebAuthentication {
public:
    using Completion = std::function<void(const GoogleAuthenticationResult&)>;
    virtual ~WebAuthentication() = default;

    // Returns whether the sign-in started. Only then is `completion` called, once. Another start()
    // cancels the running sign-in, whose completion is then never called.
    virtual bool start(const QUrl& url, const QString& callbackScheme, Completion completion) = 0;
};
