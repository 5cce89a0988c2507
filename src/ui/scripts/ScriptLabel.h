#pragma once

#include "widgets/ElidedLabel.h"

struct ScriptInfo;

/// The widget of a script's row in the lists. At the end of the row a small mark says what the row's colour says: a
/// filled square for activation, an empty one for deactivation, a slow or a quick pulse, a cross for disabling; a line
/// is a script that nothing triggers.
class ScriptLabel : public ElidedLabel
{
    Q_OBJECT

public:
    enum class Mark
    {
        None,
        NotActive,
        Deactivation,
        Activation,
        SlowPulse,
        QuickPulse,
        Disabling
    };

    using ElidedLabel::ElidedLabel;

    static Mark markOf(const ScriptInfo& script);
    void setMark(Mark newMark);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Mark mark = Mark::None;
};
