#include "ui/scripts/AddressButton.h"

#include "texts/texts.h"

namespace
{

QLatin1String background(const AddressButton& button)
{
    if (!button.selected) {
        return QLatin1String("background-color: rgb(230, 230, 230); ");
    }
    return button.filterOff ? QLatin1String("background-color: rgb(68, 220, 0); ")
                            : QLatin1String("background-color: rgb(68, 255, 0); ");
}

QLatin1String border(const AddressButton& button)
{
    if (!button.terminal && button.address != 0) {
        return QLatin1String("");
    }
    return button.compatible ? QLatin1String("border-style: solid; border-width:3px; border-color: rgb(0, 120, 0);")
                             : QLatin1String("border-style: solid; border-width:3px; border-color: rgb(120, 0, 0);");
}

} // namespace

QString addressButtonStyle(const AddressButton& button)
{
    return QLatin1String("QPushButton{") + background(button) + QLatin1String("border-radius: 11px; ") +
           border(button) + QLatin1String("} QToolTip {background-color: #F4F4F4; border-style: none;}");
}

QString addressButtonMeaning(const AddressButton& button)
{
    const QString chosen = button.selected ? texts::spokenAddressChosen() : texts::spokenAddressNotChosen();
    QString terminal = texts::spokenAddressFree();
    if (button.terminal || button.address == 0) {
        const QString name = button.terminal ? button.terminal->label : texts::spokenAddressHeadUnit();
        terminal = (button.compatible ? texts::spokenAddressFits() : texts::spokenAddressUnfit()).arg(name);
    }
    return chosen + QLatin1String(", ") + terminal;
}

QString addressButtonToolTip(const ConnectedTerminal& terminal)
{
    const auto hex = [](quint8 number, int width, char fill) {
        return QStringLiteral("%1").arg(number, width, 16, QLatin1Char(fill));
    };
    return QStringLiteral("<p align=\"center\" style=\"margin-bottom:7px; margin-top:0px\"><b>%1</b></p>"
                          "<p align=\"center\" style=\"margin-bottom:7px; margin-top:0px\">(%2%3 %4 %5)</p>")
        .arg(terminal.label.toHtmlEscaped(), hex(terminal.terminalClass, 1, ' '), hex(terminal.version, 1, ' '),
             hex(terminal.type, 2, '0'), hex(terminal.characteristic, 2, '0'));
}
