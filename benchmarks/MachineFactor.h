#pragma once

/// How many times as long as the machine of the bars this one takes for a fixed piece of Qt work, 1,000 labels made,
/// styled and painted. Machines differ by a factor of two from day to day, and some within an hour, so it is to be
/// asked beside what is measured. On the thread of the widgets.
double machineFactor();
