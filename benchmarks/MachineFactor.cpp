#include "benchmarks/MachineFactor.h"

#include "benchmarks/Figures.h"

#include <QLabel>
#include <QPixmap>
#include <QWidget>

#include <vector>

namespace
{

constexpr double onTheMachineOfTheBars = 90; ///< ms; docs/quality.md names it

void makeLabels()
{
    constexpr int count = 1000;
    constexpr int columns = 40;
    constexpr QSize size(30, 16);
    QWidget window;
    window.resize(columns * size.width(), count / columns * size.height());
    for (int i = 0; i < count; ++i) {
        auto* const label = new QLabel(QString::number(i), &window);
        label->setStyleSheet(QStringLiteral("QLabel { color: #203040; border: 1px solid #8090a0; padding: 1px; }"));
        label->setGeometry(QRect(QPoint(i % columns * size.width(), i / columns * size.height()), size));
    }
    window.grab();
}

} // namespace

double machineFactor()
{
    constexpr int runs = 3;
    std::vector<double> times;
    times.reserve(runs);
    for (int i = 0; i < runs; ++i) {
        times.push_back(milliseconds(makeLabels));
    }
    return median(times) / onTheMachineOfTheBars;
}
