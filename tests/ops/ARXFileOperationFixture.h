#pragma once

#include "ops/ARXFileOperationController.h"
#include "ops/ARXFileOperationRecorder.h"
#include "platform/ARXMainQueue.h"
#include "platform/ARXSoundPlayer.h"
#include "support/ARXTestEnvironment.h"

#include <QSignalSpy>

#include <deque>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <vector>

// A presenter that writes down what the engine asks of it and answers conflict questions from a
// queue, later on the main thread as a dialog would. With no answer queued, the question waits
// until the test calls answer().
class ARXScriptedPresenter : public ARXOperationPresenter {
public:
    struct Alert {
        ARXAlertStyle style;
        QString message;
        QString informativeText;
    };
    using Answer = std::pair<ARXFileOperationConflictAction, bool>;

    void presentSheet() override { ++presented; }
    void updateSheet(const ARXSheetUpdate& update) override { updates.push_back(update); }
    void dismissSheet() override { ++dismissed; }
    void askConflict(const ARXConflictQuestion& question,
                     std::function<void(ARXFileOperationConflictAction, bool)> reply) override {
        questions.push_back(question);
        pending = std::move(reply);
        if (!answers.empty()) {
            const Answer next = answers.front();
            answers.pop_front();
            answer(next.first, next.second);
        }
    }
    void showAlert(ARXAlertStyle style, const QString& message,
                   const QString& informativeText) override {
        alerts.push_back({style, message, informativeText});
    }
    void showToast(const QString& text) override { toasts.push_back(text); }
    // Answers from deleteAnswers, Cancel when none is left.
    void askDeleteImmediately(const Path& path, const QString& reason,
                              std::function<void(bool)> reply) override {
        deletionQuestions.push_back({path, reason});
        const bool deleteNow = !deleteAnswers.empty() && deleteAnswers.front();
        if (!deleteAnswers.empty()) {
            deleteAnswers.pop_front();
        }
        ARXMainQueue::async([reply, deleteNow] { reply(deleteNow); });
    }

    void answer(ARXFileOperationConflictAction action, bool applyToAll) {
        auto reply = std::move(pending);
        pending = nullptr;
        ARXMainQueue::async([reply, action, applyToAll] { reply(action, applyToAll); });
    }

    int presented = 0;
    int dismissed = 0;
    std::vector<ARXSheetUpdate> updates;
    std::vector<ARXConflictQuestion> questions;
    std::vector<Alert> alerts;
    std::vector<QString> toasts;
    std::deque<Answer> answers;
    std::function<void(ARXFileOperationConflictAction, bool)> pending;
    std::vector<std::pair<Path, QString>> deletionQuestions;
    std::deque<bool> deleteAnswers;
};

// A delegate that writes down its calls, in order.
class ARXRecordingDelegate : public ARXFileOperationDelegate {
public:
    void fileOperationProgress(ARXFileOperationController&,
                               const ARXFileOperationItemRef& item) override {
        progressed.push_back(item);
        workedSizes.push_back(item->workedSize);
        if (onProgress) {
            onProgress(item);
        }
    }
    void fileOperationStarted(ARXFileOperationController&) override { ++started; }
    void fileOperationFinished(ARXFileOperationController& controller) override {
        ++finishedCalls;
        finishedSeenBefore.push_back(controller.finished());
    }

    int started = 0;
    int finishedCalls = 0;
    std::vector<bool> finishedSeenBefore;
    std::vector<ARXFileOperationItemRef> progressed;
    std::vector<double> workedSizes;
    std::function<void(const ARXFileOperationItemRef&)> onProgress;
};

// Batches on real folders under the test's temporary root. Sounds go to a list instead of the
// speakers.
class ARXFileOperationFixture : public ARXTestEnvironment {
protected:
    void SetUp() override {
        ARXTestEnvironment::SetUp();
        ARXSoundPlayer::setSink([this](ARXSoundEffect effect) { sounds.push_back(effect); });
    }
    void TearDown() override {
        ARXSoundPlayer::setSink({});
        ARXTestEnvironment::TearDown();
    }

    Path at(const std::string& relative) const { return ARXPath::join(root(), relative); }

    static bool exists(const Path& path) {
        struct stat st {};
        return ::lstat(path.c_str(), &st) == 0;
    }

    static ARXFileOperationItemRef item(ARXFileOperationType type, const Path& from,
                                        std::optional<Path> to = std::nullopt) {
        return std::make_shared<ARXFileOperationItem>(type, from, std::move(to));
    }

    // Starts the batch and waits until it has ended in any way.
    std::shared_ptr<ARXFileOperationController> run(std::vector<ARXFileOperationItemRef> items,
                                                    ARXSoundEffect sound = ARXSoundEffect::silence,
                                                    bool recordable = true,
                                                    bool withPresenter = true) {
        auto controller = begin(std::move(items), sound, recordable, withPresenter);
        EXPECT_TRUE(waitForEnd());
        return controller;
    }

    // Starts the batch and returns at once; waitForEnd() waits for its end.
    std::shared_ptr<ARXFileOperationController>
    begin(std::vector<ARXFileOperationItemRef> items,
          ARXSoundEffect sound = ARXSoundEffect::silence, bool recordable = true,
          bool withPresenter = true) {
        auto controller = std::make_shared<ARXFileOperationController>(
            std::move(items), sound, recordable, withPresenter ? &presenter : nullptr);
        controller->setDelegate(&delegate);
        // Listening before the start: the end cannot be missed, however soon it comes.
        endSpy = std::make_unique<QSignalSpy>(controller.get(), &ARXFileOperationController::ended);
        controller->start();
        return controller;
    }

    // Whether the last batch begun has ended (at once if it already has).
    bool waitForEnd(int timeoutMs = 10000) const {
        return endSpy && (!endSpy->isEmpty() || endSpy->wait(timeoutMs));
    }

    static const std::vector<ARXFileOperationRecorder::GroupRef>& recorded() {
        return ARXFileOperationRecorder::shared().records();
    }

    ARXScriptedPresenter presenter;
    ARXRecordingDelegate delegate;
    std::vector<ARXSoundEffect> sounds;
    std::unique_ptr<QSignalSpy> endSpy;
};
