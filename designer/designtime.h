// designer/designtime.h: the controls inside Qt Designer show no message boxes.
//
// A control placed on a form in Designer is only being laid out: Designer reads every
// property (the obsolete ones answer with a box), and a table path typed into the property
// editor is checked at once. Those boxes would stop the designer's work, so while the
// plugin runs inside Designer, every box of the plugin's controls is written to Designer's
// output instead and answered with its most cautious button. Forms loaded at run time
// (QUiLoader) keep the host's prompter.
#pragma once

namespace plx::designer {

// Makes the design-time prompter the default of every control this plugin creates from
// now on. Idempotent.
void useDesignTimeServices();

} // namespace plx::designer
