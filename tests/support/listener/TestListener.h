// An indication listener written from scratch for the tests: plain sockets, a thread for each connection, and a list of
// ways to misbehave that is worked off message by message. It knows nothing of the code under test.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <list>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

class TestListener {
public:
    enum class Reply {
        Ok,
        Http500,
        CimFailed,       // CIM_ERR_FAILED in the body: again later
        CimNotSupported, // CIM_ERR_NOT_SUPPORTED: never
        Close,           // without an answer
        CloseInBody,
        NoXml,
        OtherMessageId,
        EmptyBody,
        HugeBody,
        Hold, // no answer until release()
    };
    struct Message {
        std::string head; // request line and fields
        std::string body;
        // The text of the VALUE of a property; "none" if it is not there.
        std::string value(const std::string& property) const;
        std::string attribute(const std::string& name) const; // the first one in the body
    };

    TestListener(); // a port is taken, but nobody listens: connections are refused
    ~TestListener();
    void listen();
    std::string url(const std::string& path = "/indications") const;

    void reply(Reply with, unsigned times = 1); // Ok for all beyond
    void release();

    bool waitForTaken(std::size_t count);    // messages that were answered with Ok
    bool waitForReceived(std::size_t count); // all that were read, whatever the answer
    std::vector<Message> taken() const;
    std::vector<Message> received() const;
    std::vector<std::string> takenValues(const std::string& property) const;
    unsigned connections() const;

private:
    void acceptLoop();
    void serve(int socket);
    bool readMessage(int socket, std::string& buffer, Message& message);
    bool answer(int socket, Reply with, const Message& message);

    int _listener = -1;
    int _port = 0;
    bool _listening = false;
    std::thread _acceptor;
    mutable std::mutex _mutex;
    mutable std::condition_variable _signal;
    std::deque<Reply> _script;
    std::vector<Message> _taken;
    std::vector<Message> _received;
    bool _released = false;
    bool _stopping = false;
    unsigned _connections = 0;
    std::list<int> _sockets;
    std::vector<std::thread> _threads;
};
