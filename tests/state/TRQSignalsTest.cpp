#include "state/TRQSignals.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace
{
struct Recorder : TRQSignals::Trackable
{
    explicit Recorder (std::vector<std::string>& l, std::string n)
        : log (l)
        , name (std::move (n))
    {
    }
    void onPing() { log.push_back (name); }
    void onValue (unsigned index, float value)
    {
        log.push_back (name + std::to_string (index) + ":" + std::to_string (static_cast<int> (value)));
    }

    std::vector<std::string>& log;
    std::string name;
};
} // namespace

TEST (TRQSignals, EmitsInOrderOfConnectionWithArguments)
{
    std::vector<std::string> log;
    TRQSignals::Signal<void (unsigned, float)> changed;
    changed.emit (1, 2.0f); // no ring yet: nothing happens
    Recorder a (log, "a"), b (log, "b");
    changed.connect (&Recorder::onValue, &b);
    changed.connect (&Recorder::onValue, &a);
    changed.emit (3, 4.0f);
    EXPECT_EQ (log, (std::vector<std::string>{"b3:4", "a3:4"}));
}

TEST (TRQSignals, TrackableThatDiesFirstLeavesTheRing)
{
    std::vector<std::string> log;
    TRQSignals::Signal<void()> ping;
    Recorder kept (log, "kept");
    {
        Recorder gone (log, "gone");
        ping.connect (&Recorder::onPing, &gone);
        ping.connect (&Recorder::onPing, &kept);
        EXPECT_EQ (ping.size(), 2u);
    }
    EXPECT_EQ (ping.size(), 1u);
    ping.emit();
    EXPECT_EQ (log, (std::vector<std::string>{"kept"}));
}

TEST (TRQSignals, SignalThatDiesFirstLeavesTheTrackableHarmless)
{
    std::vector<std::string> log;
    auto listener = std::make_unique<Recorder> (log, "x");
    {
        TRQSignals::Signal<void()> ping;
        ping.connect (&Recorder::onPing, listener.get());
        ping.emit();
    }
    listener.reset(); // disconnects expired connections: must not touch the dead ring
    EXPECT_EQ (log.size(), 1u);
}

TEST (TRQSignals, ManualDisconnectAndSelfDisconnectDuringEmit)
{
    std::vector<std::string> log;
    TRQSignals::Signal<void()> ping;
    Recorder a (log, "a"), b (log, "b");
    auto first = ping.connect (&Recorder::onPing, &a);
    std::weak_ptr<TRQSignals::Lib::ConnectionBase> self;
    self = ping.connect (&b,
                         [&]
                         {
                             log.push_back ("once");
                             if (auto c = self.lock())
                                 c->disconnect();
                         });
    ping.connect (&Recorder::onPing, &b);

    ping.emit();
    ping.emit();
    EXPECT_EQ (log, (std::vector<std::string>{"a", "once", "b", "a", "b"}));

    first.lock()->disconnect();
    log.clear();
    ping.emit();
    EXPECT_EQ (log, (std::vector<std::string>{"b"}));
}
