#pragma once

#include <QStringList>

// The subcommands; each takes its arguments with its own name first and answers the exit status.
int runPlay(const QStringList &arguments);
int runTimeline(const QStringList &arguments);
int runCheck(const QStringList &arguments);
int runConvert(const QStringList &arguments);
int runDescribe(const QStringList &arguments);
int runServe(const QStringList &arguments);
int runDevice(const QStringList &arguments);
