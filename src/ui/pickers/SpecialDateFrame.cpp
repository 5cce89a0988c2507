#include "ui/pickers/SpecialDateFrame.h"

#include "ui_SpecialDateFrame.h"

#include <QComboBox>

#include <iterator>

namespace
{

constexpr int monthLengths[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

QStringList englishMonthNames()
{
    return {QStringLiteral("January"), QStringLiteral("February"), QStringLiteral("March"),
            QStringLiteral("April"),   QStringLiteral("May"),      QStringLiteral("June"),
            QStringLiteral("July"),    QStringLiteral("August"),   QStringLiteral("September"),
            QStringLiteral("October"), QStringLiteral("November"), QStringLiteral("December")};
}

QStringList russianMonthNames()
{
    return {QStringLiteral("Января"),   QStringLiteral("Февраля"), QStringLiteral("Марта"),  QStringLiteral("Апреля"),
            QStringLiteral("Мая"),      QStringLiteral("Июня"),    QStringLiteral("Июля"),   QStringLiteral("Августа"),
            QStringLiteral("Сентября"), QStringLiteral("Октября"), QStringLiteral("Ноября"), QStringLiteral("Декабря")};
}

} // namespace

SpecialDateFrame::SpecialDateFrame(QWidget* parent, bool englishMonths)
    : QFrame(parent), ui(std::make_unique<Ui::SpecialDateFrame>()), comboMonth(new QComboBox)
{
    ui->setupUi(this);
    ui->ArrowDay->setFocusProxy(ui->spinBoxDay);
    comboMonth->setMaxVisibleItems(100);
    comboMonth->setMinimumSize(70, 20);
    comboMonth->addItems(englishMonths ? englishMonthNames() : russianMonthNames());
    ui->gridLayoutMain->addWidget(comboMonth, 0, 2);
    setTabOrder(ui->ArrowDay, comboMonth);

    // clang-format off
    connect(ui->ArrowDay, SIGNAL(valueChanged(int)), this, SLOT(sl_ArrowDay_valueChanged(int))); // clazy:exclude=old-style-connect
    connect(ui->spinBoxDay, SIGNAL(valueChanged(int)), this, SLOT(sl_spinBoxDay_valueChanged(int))); // clazy:exclude=old-style-connect
    connect(comboMonth, SIGNAL(currentIndexChanged(int)), this, SLOT(sl_comboMonth_currentIndexChanged(int))); // clazy:exclude=old-style-connect
    // clang-format on
}

SpecialDateFrame::~SpecialDateFrame() = default;

void SpecialDateFrame::setDay(int day)
{
    ui->spinBoxDay->setValue(day);
}

void SpecialDateFrame::setMonth(int month)
{
    comboMonth->setCurrentIndex(month - 1);
}

int SpecialDateFrame::day() const
{
    return ui->spinBoxDay->value();
}

int SpecialDateFrame::month() const
{
    return comboMonth->currentIndex() + 1;
}

QList<QWidget*> SpecialDateFrame::fields() const
{
    return {ui->spinBoxDay, ui->ArrowDay, comboMonth};
}

void SpecialDateFrame::sl_ArrowDay_valueChanged(int arg)
{
    if (arg != 0) {
        ui->spinBoxDay->setValue(day() + (arg > 0 ? 1 : -1));
        ui->ArrowDay->setValue(0);
    }
}

void SpecialDateFrame::sl_spinBoxDay_valueChanged(int arg)
{
    if (arg < 1) {
        ui->spinBoxDay->setValue(maxDay);
        ui->spinBoxDay->selectAll();
    } else if (arg > maxDay) {
        ui->spinBoxDay->setValue(1);
    } else {
        emit sig_changedValueDay();
    }
}

void SpecialDateFrame::sl_comboMonth_currentIndexChanged(int arg)
{
    if (arg >= 0 && arg < int(std::size(monthLengths))) {
        maxDay = monthLengths[arg];
    }
    if (day() > maxDay) {
        ui->spinBoxDay->setValue(maxDay);
    }
    emit sig_changedValueMonth();
}
