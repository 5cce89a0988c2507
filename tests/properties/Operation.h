#pragma once

#include "UserModel.h"
#include "WindowUser.h"

#include <QList>
#include <QStringList>

#include <memory>
#include <ostream>

#include <rapidcheck/state.h>

/// What is drawn for an operation. Which of it counts, the operation's kind says.
struct Drawn
{
    int terminal = 0; ///< its place in the tree
    int output = 0;
    int number = 0; ///< of a script, an address, a list, a button, a unit: the kind says which
    int value = 0;
    QList<int> rows; ///< of a list, from the top
    QStringList names;
};

/// One kind of a user's operations: what it needs, what follows from it, and how it is done in the window.
struct OperationKind
{
    using Fault = QString (WindowUser::*)(const UserModel&) const;

    int weight; ///< how often it is drawn, beside the others
    const char* words;
    void (*draw)(const UserModel&, Drawn&);
    bool (*isPossible)(const UserModel&, const Drawn&);
    void (*apply)(UserModel&, const Drawn&);
    void (*perform)(WindowUser&, const Drawn&);
    Fault faultAfter; ///< looks at more than the window; null for nothing more
};

/// One operation, as rapidcheck runs and shrinks it. After each the window has to show what the account says.
class Operation : public rc::state::Command<UserModel, WindowUser>
{
public:
    Operation(const OperationKind& ofKind, const UserModel& model);

    void checkPreconditions(const UserModel& model) const override;
    void apply(UserModel& model) const override;
    void run(const UserModel& before, WindowUser& user) const override;
    void show(std::ostream& stream) const override;

private:
    const OperationKind& kind;
    Drawn drawn;
};

/// Any operation that the user can do now.
rc::Gen<std::shared_ptr<const Operation::CommandType>> anyOperation(const UserModel& model);

/// A unit that somebody has configured.
UnitState drawnUnit();
