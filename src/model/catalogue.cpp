#include "model/catalogue.h"

#include <QStringList>

namespace
{

struct TerminalModel
{
    const char* name;
    const char* localName;
    int terminalClass;
    int version;
    int type;
    int characteristic;
    int outputs;
};

// In file order: of two models with equal numbers the first one names an event.
constexpr TerminalModel models[] = {
    {"HUBN-NX-QTR", "ХАБН-НХ-КТР", 0x0, 0x4, 0x22, 0x1F, 1},
    {"HUBN-NX-QTR vers.1", "ХАБН-НХ-КТР вер.1", 0x0, 0x5, 0x23, 0x1F, 1},
    {"HUBN-NX-QTR vers.2", "ХАБН-НХ-КТР вер.2", 0x0, 0xA, 0x23, 0x1F, 1},
    {"HUBN-NX-485 vers.1", "ХАБН-НХ-485 вер.1", 0x0, 0x7, 0x1A, 0x1F, 1},
    {"HUBN-NX-Q", "ХАБН-НХ-К", 0x0, 0x6, 0x1A, 0x1F, 1},
    {"KV-NX", "КВ-НХ", 0x1, 0x1, 0x41, 0x10, 1},
    {"LMD-NX", "ЛМД-НХ", 0x1, 0x1, 0x51, 0x10, 1},
    {"WFG-NX", "ВФГ-НХ", 0x1, 0x1, 0x85, 0x10, 1},
    {"WFG-NX vers.1", "ВФГ-НХ вер.1", 0x1, 0x2, 0x81, 0x10, 1},
    {"TQ-NX", "ТК-НХ", 0x1, 0x5, 0x21, 0x10, 1},
    {"TQ-NX vers.1", "ТК-НХ вер.1", 0x1, 0x6, 0x25, 0x20, 2},
    {"TQ-NX vers.2", "ТК-НХ вер.2", 0x1, 0x7, 0x21, 0x10, 1},
    {"TQ-NX vers.3", "ТК-НХ вер.3", 0x1, 0x6, 0x21, 0x10, 1},
    {"TQ-NX vers.4", "ТК-НХ вер.4", 0x1, 0x8, 0x20, 0x10, 1},
    {"Selen-12-NX", "Селен-12-НХ", 0x1, 0x4, 0x11, 0x10, 1},
    {"Selen-19NX", "Селен-19НХ", 0x1, 0x5, 0x11, 0x10, 1},
    {"Selen-Z2-NX", "Селен-З2-НХ", 0x1, 0x6, 0x10, 0x10, 1},
    {"Selen-12B-NX", "Селен-12Б-НХ", 0x1, 0x7, 0x11, 0x10, 1},
    {"Ardeko-8-NX", "Ардеко-8-НХ", 0x1, 0x2, 0x11, 0x10, 1},
    {"Ardeko-8B-NX", "Ардеко-8Б-НХ", 0x1, 0x3, 0x11, 0x10, 1},
    {"Ardeko-Z2-NX", "Ардеко-З2-НХ", 0x1, 0x8, 0x10, 0x20, 2},
    {"Ardeko-4-NX", "Ардеко-4-НХ", 0x1, 0x7, 0x10, 0x10, 1},
    {"Ardeko-5-NX", "Ардеко-5-НХ", 0x1, 0x5, 0x10, 0x10, 1},
    {"Ardeko-6-NX", "Ардеко-6-НХ", 0x1, 0x9, 0x10, 0x10, 1},
    {"Ardeko-7-NX", "Ардеко-7-НХ", 0x1, 0x5, 0x60, 0x20, 2},
    {"Moriz-NX", "Мориз-НХ", 0x1, 0x1, 0x10, 0x20, 2},
    {"Vitrex-3NX", "Витрекс-3НХ", 0x1, 0x3, 0x31, 0x10, 1},
    {"Klir-NX", "Клир-НХ", 0x1, 0x6, 0x31, 0x10, 1},
    {"Dorn-NX(single-channel)", "Дорн-НХ(одноканальный)", 0x1, 0x4, 0x31, 0x10, 1},
    {"Dorn-NX(two-channel)", "Дорн-НХ(двухканальный)", 0x1, 0x4, 0x31, 0x20, 2},
    {"PaneGroups-NX", "ПанеГрупс-НХ", 0x1, 0x1, 0x60, 0x20, 2},
    {"Haldeon-NX", "Халдеон-НХ", 0x2, 0x1, 0x41, 0x20, 2},
    {"Haldeon-T-NX", "Халдеон-Т-НХ", 0x2, 0x1, 0x31, 0x10, 1},
    {"Haldeon-K-NX", "Халдеон-К-НХ", 0x2, 0x1, 0x50, 0x20, 2},
    {"Haldeon-U-NX", "Халдеон-У-НХ", 0x2, 0x2, 0x52, 0x20, 2},
    {"YF-NX", "УФ-НХ", 0x2, 0x1, 0x1A, 0x10, 1},
    {"YF-NX vers.1", "УФ-НХ вер.1", 0x2, 0x5, 0x1A, 0x10, 1},
    {"YF-NX vers.3", "УФ-НХ вер.3", 0x2, 0x2, 0x1A, 0x20, 2},
    {"KV-NX-A", "КВ-НХ-А", 0x2, 0x2, 0x41, 0x20, 2},
    {"Bolto-NX", "Болто-НХ", 0x2, 0x3, 0x11, 0x10, 1},
    {"Plinta-NX", "Плинта-НХ", 0x2, 0x4, 0x1A, 0x10, 1},
    {"GHJ-NX", "ГХЙ-НХ", 0x2, 0x1, 0x21, 0x40, 2},
    {"GHT-NX", "ГХТ-НХ", 0x2, 0x1, 0x13, 0x40, 2},
    {"PNB-NX", "ПНБ-НХ", 0x3, 0x1, 0x30, 0x10, 1},
    {"XLC-NX", "КСЛС-НХ", 0x3, 0x3, 0x34, 0x10, 1},
    {"XLC-NX vers.1", "КСЛС-НХ вер.1", 0x3, 0x4, 0x34, 0x10, 1},
    {"PNB-NX vers.1", "ПНБ-НХ вер.1", 0x3, 0x4, 0x30, 0x10, 1},
    {"Termia-NX(single-channel)", "Термия-НХ(одноканальный)", 0x4, 0x1, 0x15, 0x11, 1},
    {"Termia-NX(two-channel)", "Термия-НХ(двухканальный)", 0x4, 0x1, 0x15, 0x23, 2},
    {"Tallio-NX(single-channel)", "Таллио-НХ(одноканальный)", 0x4, 0x1, 0x20, 0x11, 1},
    {"Tallio-NX(two-channel)", "Таллио-НХ(двухканальный)", 0x4, 0x1, 0x20, 0x23, 2},
};

constexpr int nameColumn = 28; ///< width of the name with its separator

QString hex(int value)
{
    return QStringLiteral("0x") + QString::number(value, 16).toUpper();
}

/// A line for each model, by a name in one of the languages and with the default name of its outputs.
QString textOf(const char* TerminalModel::*name, const QString& outputName)
{
    QString text;
    for (const TerminalModel& model : models) {
        QStringList fields = {hex(model.terminalClass), hex(model.version), hex(model.type), hex(model.characteristic)};
        for (int i = 0; i < model.outputs; ++i) {
            fields.append(outputName);
        }
        text += (QString::fromUtf8(model.*name) + QLatin1Char(';')).leftJustified(nameColumn) +
                fields.join(QLatin1String("; ")) + QLatin1Char('\n');
    }
    return text;
}

} // namespace

namespace catalogue
{

QString english()
{
    return textOf(&TerminalModel::name, QStringLiteral("Output"));
}

QString russian()
{
    return textOf(&TerminalModel::localName, QStringLiteral("Выход"));
}

} // namespace catalogue
