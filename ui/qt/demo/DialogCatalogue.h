// Every dialog and progress form of the component, each made as it shows on the screen, on a
// sample office of its own: what the Qt demo opens and renders and what the Qt tests check.
#pragma once

#include <QTemporaryDir>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Forms.h"
#include "roster/cCustList.h"
#include "roster/cCustListSync.h"

namespace morvane {
class ctrlMorvane;
}

namespace morvane::qt {

struct CatalogueDialog {
    std::string name;   // also the screenshot's file name
    std::string title;  // the launcher's button
    std::function<std::unique_ptr<forms::Form>(forms::Toolkit&)> make;
    // How a host opens it through the public object; empty where a member opens it only
    // halfway through a synchronisation.
    std::function<void(ctrlMorvane&)> open;
    // A progress form works as soon as it is shown: the launcher shows its look only.
    bool progress = false;
};

class DialogCatalogue {
public:
    DialogCatalogue();
    const std::vector<CatalogueDialog>& Dialogs() const { return dialogs_; }

private:
    // An office of three customers and a server that holds two of them and a third of its
    // own, for the roster and backup-target dialogs to show.
    QTemporaryDir dir_;
    std::string db_;
    cCustList server_;
    cCustListSync targets_;
    std::vector<CatalogueDialog> dialogs_;
};

}  // namespace morvane::qt
