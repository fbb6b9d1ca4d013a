#pragma once

#include <QStringList>

struct ServiceConfiguration;

// The account from the command line, with the session that the window uses too. Passwords come from
// the terminal or standard input, never from an argument, which every process may read. They give
// the exit status.
int runLogin(const QStringList& arguments, const ServiceConfiguration& configuration);
int runRegister(const QStringList& arguments, const ServiceConfiguration& configuration);
int runLogout(const QStringList& arguments, const ServiceConfiguration& configuration);
int runAccount(const QStringList& arguments, const ServiceConfiguration& configuration);
int runHistory(const QStringList& arguments, const ServiceConfiguration& configuration);
