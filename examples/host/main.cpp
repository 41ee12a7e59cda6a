// The smallest host of the installed component: it creates the public object, as the desktop
// program does at start, and asks it for the login state, which no login has set yet.
#include <iostream>

#include "component/ctrlMorvane.h"

int main() {
    morvane::ctrlMorvane component;
    const int state = component.LoginState();
    std::cout << "morvane component loaded; login state " << state << '\n';
    return state == 0 ? 0 : 1;
}
