// services/internal/libraryprompter.h: which prompter the library uses when neither the
// caller nor the host chose one.
//
// The services need Qt Core only, so the message-box prompter lives in the widgets library,
// which installs it here when a program links it. Without it every question gets the
// answer of a box closed unanswered: nobody is there to ask.
#pragma once

namespace plx {

class Prompter;

// Makes `prompter` the library's own (nullptr: back to the unattended answers). Called
// during static initialisation; the prompter lives as long as the program.
void setLibraryPrompter(Prompter *prompter);

} // namespace plx
