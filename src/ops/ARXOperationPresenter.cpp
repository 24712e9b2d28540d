#include "ops/ARXOperationPresenter.h"

#include <QCoreApplication>

namespace {
ARXOperationPresenter* gMain = nullptr;
}

void ARXOperationPresenter::askDeleteImmediately(const Path&, const QString& reason,
                                                 std::function<void(bool)> answer) {
    showAlert(ARXAlertStyle::informational,
              QCoreApplication::translate("Atrium", "Error occurred!"), reason);
    answer(false);
}

ARXOperationPresenter* ARXOperationPresenter::main() {
    return gMain;
}
void ARXOperationPresenter::setMain(ARXOperationPresenter* presenter) {
    gMain = presenter;
}
