#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

// Synchronous signals. A slot is a member function of an object that derives from
// Trackable; when either the signal or the object dies first, the connection goes
// away on its own. Emitting calls the slots at once, on the emitter's thread, in
// order of connection. There is no lock: a signal and its slots belong to one
// thread at a time.
namespace TRQSignals
{
class Trackable;

namespace Lib
{
class ConnectionBase
{
public:
    virtual ~ConnectionBase() = default;
    virtual void disconnect() = 0;
};

template<typename Result>
struct CollectorDefault;

// Every signal of the program returns nothing; results are discarded.
template<>
struct CollectorDefault<void>
{
};

template<typename Signature, typename Collector>
class ProtoSignal;

template<typename Signature, typename Collector>
class Connection;

template<typename Collector, typename... Args>
class ProtoSignal<void (Args...), Collector>
{
public:
    using Function = std::function<void (Args...)>;

    ProtoSignal() = default;
    ProtoSignal (const ProtoSignal&) = delete;
    ProtoSignal& operator= (const ProtoSignal&) = delete;

    ~ProtoSignal()
    {
        // Connections may outlive the ring through a Trackable's weak pointer only
        // while this list holds them; make them forget the ring first.
        for (auto& connection : connections)
            connection->forget();
        connections.clear();
        destroyRing();
    }

    // Binds method to target and appends it to the ring. The returned handle can
    // disconnect early; the target disconnects by itself when it dies.
    template<typename Object, typename Method>
    std::weak_ptr<ConnectionBase> connect (Method method, Object* target);

    // Connects a callable whose lifetime is tied to owner.
    std::weak_ptr<ConnectionBase> connect (Trackable* owner, Function function);

    void emit (Args... args)
    {
        if (head == nullptr)
            return;

        Node* node = head;
        node->acquire();
        do
        {
            if (node->function)
                node->function (args...);
            Node* const next = node->next;
            next->acquire();
            node->release();
            node = next;
        } while (node != head);
        node->release();
    }

    void operator() (Args... args) { emit (args...); }

    // Number of live slots.
    std::size_t size() const
    {
        std::size_t n = 0;
        if (head != nullptr)
            for (Node* node = head->next; node != head; node = node->next)
                ++n;
        return n;
    }

private:
    friend class Connection<void (Args...), Collector>;

    struct Node
    {
        Node* next = this;
        Node* previous = this;
        Function function;
        int count = 1;

        void acquire() { ++count; }
        void release()
        {
            if (--count == 0)
                delete this;
        }
    };

    // Takes node out of the ring. Its own links stay, so that a walk standing on
    // it can go on; it is freed once nobody stands on it.
    bool remove (Node* node)
    {
        if (head == nullptr || node == head)
            return false;
        for (Node* n = head->next; n != head; n = n->next)
        {
            if (n == node)
            {
                node->previous->next = node->next;
                node->next->previous = node->previous;
                node->function = nullptr;
                node->release();
                return true;
            }
        }
        return false;
    }

    void destroyRing()
    {
        if (head == nullptr)
            return;
        Node* node = head->next;
        while (node != head)
        {
            Node* const next = node->next;
            node->function = nullptr;
            node->release();
            node = next;
        }
        head->release();
        head = nullptr;
    }

    Node* append (Function function)
    {
        if (head == nullptr)
            head = new Node();
        Node* node = new Node();
        node->function = std::move (function);
        node->previous = head->previous;
        node->next = head;
        head->previous->next = node;
        head->previous = node;
        return node;
    }

    std::weak_ptr<ConnectionBase> track (Trackable* owner, Node* node);

    Node* head = nullptr;
    std::vector<std::shared_ptr<Connection<void (Args...), Collector>>> connections;
};

template<typename Collector, typename... Args>
class Connection<void (Args...), Collector> : public ConnectionBase
{
public:
    using Ring = ProtoSignal<void (Args...), Collector>;
    using Node = typename Ring::Node;

    Connection (Ring* r, Node* n)
        : ring (r)
        , node (n)
    {
    }

    ~Connection() override { disconnect(); }

    void disconnect() override
    {
        if (ring != nullptr)
            ring->remove (node);
        forget();
    }

    void forget()
    {
        ring = nullptr;
        node = nullptr;
    }

    bool isConnected() const { return ring != nullptr; }

private:
    Ring* ring;
    Node* node;
};
} // namespace Lib

class Trackable
{
public:
    Trackable() = default;
    // A copy starts without connections: they belong to the original.
    Trackable (const Trackable&) {}
    Trackable& operator= (const Trackable&) { return *this; }

    virtual ~Trackable()
    {
        for (auto& weak : trackedConnections)
            if (auto connection = weak.lock())
                connection->disconnect();
        trackedConnections.clear();
    }

    // Called by signals on connection.
    void track (std::weak_ptr<Lib::ConnectionBase> connection)
    {
        trackedConnections.erase (std::remove_if (trackedConnections.begin(), trackedConnections.end(),
                                                  [] (const auto& w) { return w.expired(); }),
                                  trackedConnections.end());
        trackedConnections.push_back (std::move (connection));
    }

private:
    std::vector<std::weak_ptr<Lib::ConnectionBase>> trackedConnections;
};

template<typename Signature, typename Collector = Lib::CollectorDefault<void>>
class Signal : public Lib::ProtoSignal<Signature, Collector>
{
public:
    Signal() = default;
    virtual ~Signal() = default;
};

namespace Lib
{
template<typename Collector, typename... Args>
std::weak_ptr<ConnectionBase> ProtoSignal<void (Args...), Collector>::track (Trackable* owner, Node* node)
{
    // Connections that were disconnected by hand are dropped here, so the list
    // does not grow with every reconnection.
    connections.erase (std::remove_if (connections.begin(), connections.end(),
                                       [] (const auto& c) { return !c->isConnected(); }),
                       connections.end());

    auto connection = std::make_shared<Connection<void (Args...), Collector>> (this, node);
    connections.push_back (connection);
    std::weak_ptr<ConnectionBase> weak = connection;
    if (owner != nullptr)
        owner->track (weak);
    return weak;
}

template<typename Collector, typename... Args>
template<typename Object, typename Method>
std::weak_ptr<ConnectionBase> ProtoSignal<void (Args...), Collector>::connect (Method method, Object* target)
{
    static_assert (std::is_base_of_v<Trackable, Object>, "slots belong to Trackable objects");
    Node* node = append ([target, method] (Args... args) { (target->*method) (args...); });
    return track (target, node);
}

template<typename Collector, typename... Args>
std::weak_ptr<ConnectionBase> ProtoSignal<void (Args...), Collector>::connect (Trackable* owner,
                                                                               Function function)
{
    Node* node = append (std::move (function));
    return track (owner, node);
}
} // namespace Lib
} // namespace TRQSignals
