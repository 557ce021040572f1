#pragma once

#include <QString>
#include <QStringList>

/// The command line.
struct Options
{
    enum Request { Run, CheckScript, ShowHelp, ShowVersion, WrongUsage };

    Request request = Run;
    /// What is wrong with the command line.
    QString fault;

    QString server;
    QString user;
    QString password;
    QString script;
    QStringList transports;
    QString journal;
    int openLimit = 10000; // ms
    bool quiet = false;
    bool verbose = false;

    /// \p arguments with the program's name first. The password comes from the environment where the command
    /// line has none.
    static Options parse(const QStringList& arguments);
    static QString help();
};
