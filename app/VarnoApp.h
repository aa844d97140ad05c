#pragma once

#include "app/AppDelegate.h"

#include <QCoreApplication>

#include <functional>
#include <memory>

namespace varno {

/// What the program owns besides its controller and its screens, which it outlives: the stores and
/// services of the user, or others.
class Owners {
public:
    Owners() = default;
    virtual ~Owners() = default;
    Q_DISABLE_COPY_MOVE(Owners)

    [[nodiscard]] virtual AppViewModel::Dependencies dependencies() = 0;

    /// Called once, when the icon is in its place and the shortcut is bound.
    virtual void started(AppDelegate& delegate) = 0;

    /// Called at the end of the program: ends the calls of the services.
    virtual void end() = 0;
};

/// The program, from its start to its exit status.
class VarnoApp {
    Q_DECLARE_TR_FUNCTIONS(varno::VarnoApp)

public:
    struct Launch {
        QString busName; ///< there is one program of that name at a time
        /// Called once there is an application object; a failure ends the program.
        std::function<Result<std::unique_ptr<Owners>>()> owners;
    };

    /// Gives the application object, which is there by then, its name and its looks.
    static void prepare();

    /// Works with what belongs to the user.
    static int run(int argc, char** argv);
    static int run(int argc, char** argv, const Launch& launch);
};

} // namespace varno
