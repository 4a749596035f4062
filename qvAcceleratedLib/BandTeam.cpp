// How a call finds its helpers.
//
// Each thread of the team has a mailbox. A call puts its address into the mailboxes of idle threads
// and begins its own bands at once; whoever comes runs bands from the back while any are left. When
// nobody has to begin a band any more, the call takes its address out of the mailboxes whose owners
// have not come, and waits for the others alone, who are running bands. So no call waits for a
// thread that another one holds, nor for one whose processor is busy elsewhere before it has begun.
//
// What a call cannot take back is a band that has been begun by a thread which then loses its
// processor. So a call that took longer than it would have taken alone puts the team into debt,
// several times what was lost, and until calls that stay alone have worked it off nobody is offered
// anything.
#include "qvAcceleratedLib/BandTeam.h"

#include <initializer_list>

#include "dispatch/FloatControl.h"
#include "qvAcceleratedLib/HostRegion.h"
#include "qvAcceleratedLib/Settings.h"
#include "qvAcceleratedLib/Threads.h"

#if !defined(_WIN32)
#include <pthread.h>
#endif

namespace qv {
namespace {

using std::memory_order_acquire;
using std::memory_order_relaxed;
using std::memory_order_release;

// How long an idle thread looks for the next call before it sleeps, and a call for its last helper.
constexpr Ticks kSpin = TicksOfMicroseconds(40);

// Waking a sleeping thread is worth it for this much work, of this call and of those that came just
// before it without a pause: the woken thread begins late and slowly, with cold caches.
constexpr Ticks kWorthWaking = TicksOfMicroseconds(300);

// Calls that take less than this stay alone: a message to another processor and back takes as long.
constexpr Ticks kWorthSharing = TicksOfMicroseconds(1);

// After a thread could not be had none is asked for during this time.
constexpr Ticks kBeforeRetry = TicksOfMicroseconds(1000000);

// A loss is worked off this many times; what a stopped process seems to have lost does not count.
constexpr int kDebtFactor = 8;
constexpr Ticks kMostLost = TicksOfMicroseconds(5000);

// Threads at most, whatever the budget.
constexpr int kMostThreads = 255;

constexpr int kForecasts = 1024;

// A call, on its thread's stack.
struct Call {
  RunPieces* run;
  const void* pieces;
  int count;

  // Bands begun: by the calling thread from the front (low half), by helpers from the back (high
  // half). The same bands come to the same processors call by call, and with them what its caches
  // hold.
  static constexpr uint32_t kFront = 1, kBack = 0x10000;
  std::atomic<uint32_t> begun{0};

  // Helpers that have left, and whether the calling thread sleeps until all have.
  static constexpr uint32_t kHelper = 1, kCallerSleeps = 0x80000000;
  std::atomic<uint32_t> left{0};

  IppStatus status = StatusOk;

  void Run(int i) {
    const IppStatus result = run(pieces, i, 1);
    if (i == count - 1) status = result;  // read when all have left
  }

  // Runs bands from one end until none is left; returns how many.
  int RunFrom(uint32_t end) {
    for (int done = 0;; ++done) {
      const uint32_t before = begun.fetch_add(end, memory_order_relaxed);
      const int front = static_cast<int>(before % kBack), back = static_cast<int>(before / kBack);
      if (front + back >= count) return done;
      Run(end == kFront ? front : count - 1 - back);
    }
  }
};

// What a thread's mailbox says besides the address of a call that it is offered.
constexpr uintptr_t kNoThread = 0, kAwake = 1, kAsleep = 2, kAtWork = 3;

struct alignas(64) Member {
  std::atomic<uintptr_t> mailbox{kNoThread};
  std::atomic<uint32_t> wakes{0};  // how often it was woken; it sleeps on this word
};

// How long calls of a kind take on one thread, for the kinds that were met last: in ticks for 2^20
// pixels, 0 for a kind that was met, but only with helpers.
struct Forecast {
  std::atomic<uint32_t> kind{0};
  std::atomic<uint32_t> rate{0};

  bool Knows(uint32_t asked) const { return kind.load(memory_order_relaxed) == asked; }
  void Set(uint32_t met, uint64_t newRate) {
    kind.store(met, memory_order_relaxed);
    rate.store(newRate < kMostRate ? static_cast<uint32_t>(newRate) : kMostRate,
               memory_order_relaxed);
  }
  static constexpr uint32_t kMostRate = 1u << 30;
};

constinit struct {
  Member members[kMostThreads];
  std::atomic<int> size{0};                      // members that have had a thread, the first ones
  std::atomic<bool> starting{false};             // some call is starting a thread
  std::atomic<bool> refused{false};              // a thread could not be had,
  std::atomic<Ticks> refusedAt{0};               // at this time
  std::atomic<int32_t> debt{0};                  // ticks to be worked off by calls that stay alone
  std::atomic<Ticks> lastEnd{0};                 // of a call
  std::atomic<Ticks> streak{0};                  // work without pauses until then
  Forecast forecasts[kForecasts];
} team;

void Live(void* self) {
  EnterThread();
  SetMark(true);  // a call made from inside a band stays on its thread
  Member& me = *static_cast<Member*>(self);
  for (Ticks idleSince = Now();;) {
    uintptr_t mail = me.mailbox.load(memory_order_acquire);
    if (mail > kAtWork) {
      if (!me.mailbox.compare_exchange_strong(mail, kAtWork, memory_order_acquire)) continue;
      Call& call = *reinterpret_cast<Call*>(mail);
      call.RunFrom(Call::kBack);
      // Idle first, so that the next call finds it so; and from then on the call may be gone.
      me.mailbox.store(kAwake, memory_order_relaxed);
      if (call.left.fetch_add(Call::kHelper, memory_order_release) & Call::kCallerSleeps)
        WakeSleepers(&call.left);
      idleSince = Now();
    } else if (mail == kAwake) {
      for (int i = 0; i < 32 && me.mailbox.load(memory_order_relaxed) == kAwake; ++i) Pause();
      if (Now() - idleSince > kSpin)
        me.mailbox.compare_exchange_strong(mail, kAsleep, memory_order_relaxed);
    } else {
      const uint32_t wakes = me.wakes.load(memory_order_acquire);
      if (me.mailbox.load(memory_order_relaxed) == kAsleep) SleepWhile(me.wakes, wakes);
      idleSince = Now();
    }
  }
}

// Threads that the budget has room for now; there may be more, from before it was lowered.
int MostHelpers() {
  const int helpers = ThreadBudget.load(memory_order_relaxed) - 1;
  return helpers < kMostThreads ? helpers : kMostThreads;
}

// The threads that a call has been offered to.
class Helpers {
 public:
  explicit Helpers(Call* call) : call_(call), offer_(reinterpret_cast<uintptr_t>(call)) {}

  bool any() const { return lastOffered_ >= 0; }

  // Offers the call to `wanted` idle threads: those that are awake, then as many as it may wake or
  // start.
  void Enlist(int wanted, int mayWake, Ticks now) {
    const int started = team.size.load(memory_order_acquire), most = MostHelpers();
    const int size = started < most ? started : most;
    for (int i = 0; i < size && wanted > 0; ++i) wanted -= Offer(i, kAwake);
    if (wanted > mayWake) wanted = mayWake;
    for (int i = 0; i < size && wanted > 0; ++i) {
      if (!Offer(i, kAsleep)) continue;
      team.members[i].wakes.fetch_add(1, memory_order_release);
      WakeSleepers(&team.members[i].wakes);
      --wanted;
    }
    if (wanted > 0) Start(wanted, now);
  }

  // Takes the offers back that nobody came for, and waits until all others have left.
  void Dismiss() {
    uint32_t came = 0;
    for (int i = 0; i <= lastOffered_; ++i) came += IsNoted(i) && !TakeBack(i);
    const auto here = [&] {
      return (call_->left.load(memory_order_acquire) & ~Call::kCallerSleeps) != came;
    };
    if (!here()) return;
    const Ticks since = Now();
    do {
      for (int i = 0; i < 32; ++i) {
        if (!here()) return;
        Pause();
      }
    } while (Now() - since <= kSpin);
    call_->left.fetch_or(Call::kCallerSleeps, memory_order_relaxed);
    while (here()) {
      const uint32_t left = call_->left.load(memory_order_relaxed);
      if ((left & ~Call::kCallerSleeps) != came) SleepWhile(call_->left, left);
    }
  }

 private:
  bool Offer(int i, uintptr_t idle) {
    std::atomic<uintptr_t>& mailbox = team.members[i].mailbox;
    if (IsNoted(i)) return false;  // may have come and left already
    if (mailbox.load(memory_order_relaxed) != idle ||
        !mailbox.compare_exchange_strong(idle, offer_, memory_order_release, memory_order_relaxed))
      return false;
    Note(i);
    return true;
  }

  // A thread that was asleep has been woken and finds itself idle.
  bool TakeBack(int i) {
    uintptr_t offer = offer_;
    return team.members[i].mailbox.compare_exchange_strong(offer, kAwake, memory_order_relaxed);
  }

  bool IsNoted(int i) const { return offered_[i / 32] >> i % 32 & 1; }
  void Note(int i) {
    offered_[i / 32] |= 1u << i % 32;
    if (i > lastOffered_) lastOffered_ = i;
  }

  // Starts threads for the call, while the budget has room for them.
  void Start(int wanted, Ticks now) {
    if (team.refused.load(memory_order_relaxed) &&
        now - team.refusedAt.load(memory_order_relaxed) < kBeforeRetry)
      return;
    if (team.starting.exchange(true, memory_order_acquire)) return;
    const int most = MostHelpers();
    bool started = true;
    for (int i = team.size.load(memory_order_relaxed); started && wanted > 0 && i < most; ++i) {
      Member& member = team.members[i];
      member.mailbox.store(offer_, memory_order_release);
      started = StartThread(ThreadEntry<Live>, &member);
      if (started) {
        Note(i);
        team.size.store(i + 1, memory_order_release);
        --wanted;
      } else {
        member.mailbox.store(kNoThread, memory_order_relaxed);
        team.refusedAt.store(now, memory_order_relaxed);
      }
    }
    team.refused.store(!started, memory_order_relaxed);
    team.starting.store(false, memory_order_release);
  }

  Call* call_;
  uintptr_t offer_;
  int lastOffered_ = -1;
  uint32_t offered_[(kMostThreads + 31) / 32] = {};  // a bit a thread
};

// A call as the forecasts see it. Calls of the same work on numbers of pixels that have as many
// binary digits are of one kind.
class Met {
 public:
  Met(const Work& work, RunPieces* run)
      : pixels_(work.pixels < 1 ? 1 : static_cast<uint64_t>(work.pixels)) {
    uint64_t hash = reinterpret_cast<uintptr_t>(run);
    for (const uint64_t part : {uint64_t{work.method}, uint64_t(__builtin_clzll(pixels_))})
      hash = (hash ^ part) * 0x9E3779B97F4A7C15u;
    kind_ = static_cast<uint32_t>(hash >> 32) | 1;  // 0 is no kind
    forecast_ = &team.forecasts[kind_ / 2 % kForecasts];
    known_ = forecast_->Knows(kind_);
    rate_ = known_ ? forecast_->rate.load(memory_order_relaxed) : 0;
  }

  bool HasForecast() const { return rate_ > 0; }

  // What it will take alone. A kind that was never met may take an eighth of a nanosecond a pixel,
  // more than copies do and less than filters; one that was met without being timed alone is timed
  // now.
  uint64_t Alone() const {
    return known_ ? rate_ * pixels_ >> 20 : pixels_ / 512;
  }

  // A moving average, which a single delay does not move far. What a band took on the calling
  // thread while others were at work may say too much of a call alone, so that it only lowers the
  // forecast.
  void Learn(Ticks measured, bool alone) {
    const uint64_t rate = (uint64_t{measured} << 20) / pixels_ + 1;
    if (rate_ == 0)
      forecast_->Set(kind_, alone ? rate : 0);
    else if (rate < rate_)
      forecast_->Set(kind_, rate_ - (rate_ - rate) / 4);
    else if (alone)
      forecast_->Set(kind_, rate_ + ((rate < 2 * rate_ ? rate : 2 * rate_) - rate_) / 4 + 1);
  }

 private:
  uint64_t pixels_, rate_;
  uint32_t kind_;
  bool known_;
  Forecast* forecast_;
};

IppStatus RunHere(int count, RunPieces* run, const void* pieces) {
  if (BandSharing == Sharing::Measured) return run(pieces, 0, count);
  for (int i = 0; i < count - 1; ++i) run(pieces, i, 1);
  return run(pieces, count - 1, 1);
}

}  // namespace

IppStatus RunOnTeam(int count, const Work& work, RunPieces* run, const void* pieces) {
  if (count < 1) return StatusOk;
  Ticks start = Now();
  if (IsMarked() || count > 0x7FFF || BandSharing == Sharing::OnOneThread || IsInHostRegion(&start))
    return RunHere(count, run, pieces);

  Met met(work, run);
  const uint64_t alone = met.Alone();
  const Ticks streak = start - team.lastEnd.load(memory_order_relaxed) <= kSpin
                           ? team.streak.load(memory_order_relaxed)
                           : 0;

  Call call{run, pieces, count};
  Helpers helpers(&call);
  const bool inDebt = team.debt.load(memory_order_relaxed) > 0;
  if (BandSharing == Sharing::Always) {
    helpers.Enlist(count - 1, count - 1, start);
  } else if (!inDebt && alone >= kWorthSharing) {
    const uint64_t wakes = (streak + alone) / kWorthWaking;
    helpers.Enlist(count - 1, wakes < kMostThreads ? static_cast<int>(wakes) : kMostThreads, start);
  }
  const Ticks begin = helpers.any() ? Now() : start;
  SetMark(true);
  int own = count;
  if (helpers.any())
    own = call.RunFrom(Call::kFront);
  else
    call.status = RunHere(count, run, pieces);
  SetMark(false);
  Ticks end = Now();
  if (own > 0)
    met.Learn(static_cast<Ticks>(uint64_t{end - begin} * static_cast<unsigned>(count) /
                                 static_cast<unsigned>(own)),
              !helpers.any());
  if (helpers.any()) {
    helpers.Dismiss();
    end = Now();
    const Ticks took = end - start;
    if (met.HasForecast() && took > alone) {
      const uint64_t lost = took - alone;
      team.debt.fetch_add(kDebtFactor * static_cast<int32_t>(lost < kMostLost ? lost : kMostLost),
                          memory_order_relaxed);
    }
  } else if (inDebt) {
    team.debt.fetch_sub(static_cast<int32_t>(end - start), memory_order_relaxed);
  }
  team.lastEnd.store(end, memory_order_relaxed);
  team.streak.store(streak + (end - start), memory_order_relaxed);
  return call.status;
}

void PrepareTeam() {
  PrepareThreads();
#if !defined(_WIN32)
  // A child has only the thread that called fork, and makes a team of its own. If the system
  // refuses, its calls stay alone: what they offer to threads that are not there they take back.
  pthread_atfork(nullptr, nullptr, [] {
    for (Member& member : team.members) member.mailbox.store(kNoThread, memory_order_relaxed);
    team.size = 0;
    team.starting = false;
    team.refused = false;
    team.debt = 0;
  });
#endif
}

}  // namespace qv
