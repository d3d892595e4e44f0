// The message pump: each message to the plug-in is one transaction over the drawing, what it changed becomes one undo
// step, and the notifications that it caused are sent afterwards. The host's own steps take the same path.
#include <algorithm>
#include <exception>
#include <utility>

#include "host/host.h"
#include "host/host_state.h"

namespace quorvel::host {

namespace {

constexpr std::int32_t kMessageCheck = 0x51564D53;  // 'QVMS'
constexpr AIErr kPluginFailedErr = -1;              // the plug-in has thrown

// Holds a counter or flag up for as long as it lives, whatever is thrown.
template <typename T>
class Raised {
  public:
    explicit Raised(T& what) : what_(what) { ++what_; }
    ~Raised() { --what_; }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;

  private:
    T& what_;
};

}  // namespace

// --- what lives for the length of a message

const char* MessageTexts::keep(const std::string& text) {
    if (text.size() < kLong) return add(text);
    std::string_view& recent = recent_[std::hash<std::string_view>()(text) % recent_.size()];
    if (recent.data() == nullptr || recent != text) recent = {add(text), text.size()};
    return recent.data();
}

const char* MessageTexts::add(const std::string& text) {
    const std::size_t size = text.size() + 1;
    if (blocks_.empty() || blocks_.back().capacity() - blocks_.back().size() < size)
        blocks_.emplace_back().reserve(std::max(size, kBlock));
    std::vector<char>& block = blocks_.back();
    const std::size_t start = block.size();
    block.insert(block.end(), text.c_str(), text.c_str() + size);
    return block.data() + start;
}

void MessageArena::clear() {
    const auto next = static_cast<std::uint16_t>(generation + 1);
    *this = {};
    generation = next != 0 ? next : 1;
}

// --- one message

bool HostState::invokeGuarded(const std::function<void()>& call) {
    Error failure = makeError(ErrorCode::kPluginFailedUnknown);
    try {
        call();
        return true;
    } catch (const std::exception& thrown) {
        failure = makeError(ErrorCode::kPluginFailed, {thrown.what()});
    } catch (...) {  // nothing is known of it
    }
    if (host.callbacks.pluginFailed) host.callbacks.pluginFailed(failure);
    return false;
}

AIErr HostState::callPlugin(const char* caller, const char* selector, SPMessageData* message) {
    *message = {kMessageCheck, makeHandle<SPPluginRef>(1), globals, &basicSuite()};
    AIErr result = kPluginFailedErr;
    const bool survived = invokeGuarded([&] {
        const Raised deeper(depth);
        result = entry(caller, selector, message);
    });
    globals = message->globals;
    if (!survived && document != nullptr && document->inTransaction()) document->rollback();
    return result;
}

void HostState::beginMessage() {
    undoName.clear();
    redoName.clear();
    if (sending == 0) lastUndoName.clear();  // what a message sets off does not wipe out the name that it gave
    if (document != nullptr && !document->inTransaction()) document->begin();
}

void HostState::finishMessage() {
    const std::string undo = undoName.empty() ? "Undo" : undoName, redo = redoName.empty() ? "Redo" : redoName;
    // Half of what was drawn helps nobody.
    if (document != nullptr && document->inTransaction() && document->hasRefusedRange()) {
        document->rollback();
        if (host.callbacks.rangeRefused) host.callbacks.rangeRefused();
    }
    const bool stepped = document != nullptr && document->inTransaction() && document->commit(undo, redo);
    arena.clear();
    queueArtChange();
    if (stepped && host.callbacks.stepMade) host.callbacks.stepMade(undo);
    sendQueued();
}

// What the body has changed is taken back before anybody is told of it.
void HostState::tryOut(const std::function<void()>& body) {
    if (entry == nullptr || document == nullptr || document->inTransaction() || sending > 0) return;
    const std::string lastName = lastUndoName;
    beginMessage();
    for (const doc::LayerId layer : document->layers()) {
        document->setLayerVisible(layer, true);
        document->setLayerEditable(layer, true);
    }
    {
        const Raised deeper(depth);
        body();
    }
    document->rollback();
    notifiedChange = document->changeCount();
    finishMessage();
    lastUndoName = lastName;
}

// Changes that are made in answer to a notification are not told again, or two who answer would never end.
void HostState::queueArtChange() {
    if (document == nullptr || document->changeCount() == notifiedChange) return;
    notifiedChange = document->changeCount();
    const auto asks = [](const NotifierRecord& one) { return one.type == kArtChangedNotifier; };
    if (sending == 0 && std::any_of(notifiers.begin(), notifiers.end(), asks)) queued.emplace_back(kArtChangedNotifier);
}

void HostState::sendQueued() {
    if (depth > 0 || sending > 0) return;
    const Raised busy(sending);
    while (!queued.empty()) {
        const std::string type = std::move(queued.front());
        queued.pop_front();
        sendNotification(type);
    }
}

AIErr HostState::sendNotification(const std::string& type) {
    AIErr first = kNoErr;
    const std::vector<NotifierRecord> asked = notifiers;
    for (const NotifierRecord& notifier : asked) {
        if (notifier.type != type) continue;
        AINotifierMessage message;
        message.notifier = notifier.handle;
        message.type = type.c_str();
        const AIErr result = host.send(kCallerNotifier, kSelectorNotify, &message.d);
        if (first == kNoErr) first = result;
    }
    return first;
}

AIErr Host::send(const char* caller, const char* selector, SPMessageData* message) {
    if (impl_->entry == nullptr || caller == nullptr || selector == nullptr || message == nullptr)
        return kBadParameterErr;
    const bool outermost = impl_->depth == 0;
    if (outermost) impl_->beginMessage();
    const AIErr result = impl_->callPlugin(caller, selector, message);
    if (outermost) impl_->finishMessage();
    return result;
}

bool Host::busy() const { return impl_->depth > 0; }

AIErr Host::notify(std::string_view type) {
    if (impl_->depth > 0 || impl_->sending > 0) {
        impl_->queued.emplace_back(type);
        return kNoErr;
    }
    return impl_->sendNotification(std::string(type));
}

// --- steps

bool Host::edit(const std::string& name, const std::function<bool(doc::Document&)>& change) {
    return edit(StepName{"Undo " + name, "Redo " + name}, change);
}

bool Host::edit(const StepName& name, const std::function<bool(doc::Document&)>& change) {
    doc::Document* document = impl_->document.get();
    if (document == nullptr || document->inTransaction()) return false;
    document->begin();
    bool done = false;
    try {
        done = change(*document);
    } catch (...) {
        document->rollback();
        document->commit({}, {});
        throw;
    }
    if (document->hasRefusedRange()) done = false;
    if (!done) document->rollback();
    const bool stepped = document->commit(name.undo, name.redo);
    impl_->lastUndoName = stepped ? name.undo : std::string();
    if (stepped && callbacks.stepMade) callbacks.stepMade(name.undo);
    impl_->queueArtChange();
    impl_->sendQueued();
    return done;
}

bool Host::undo() {
    doc::Document* document = impl_->document.get();
    if (document == nullptr || document->inTransaction() || !document->undo()) return false;
    impl_->lastUndoName.clear();
    impl_->queueArtChange();
    impl_->sendQueued();
    return true;
}

bool Host::redo() {
    doc::Document* document = impl_->document.get();
    if (document == nullptr || document->inTransaction() || !document->redo()) return false;
    impl_->lastUndoName.clear();
    impl_->queueArtChange();
    impl_->sendQueued();
    return true;
}

const std::string& Host::lastUndoName() const { return impl_->lastUndoName; }

}  // namespace quorvel::host
