#include "ops/ARXOperationPresenter.h"

namespace {
ARXOperationPresenter* gMain = nullptr;
}

ARXOperationPresenter* ARXOperationPresenter::main() {
    return gMain;
}
void ARXOperationPresenter::setMain(ARXOperationPresenter* presenter) {
    gMain = presenter;
}
