// A server that answers every connection with the same bytes, whatever is asked, and hangs up; or says nothing at all.
// Keeps what it was asked. It listens on a free port of loopback from its construction on.
#pragma once

#include <mutex>
#include <string>
#include <thread>
#include <vector>

class ScriptedServer {
public:
    enum class Way { AnswerAndClose, CloseAtOnce, SayNothing, Refuse };
    explicit ScriptedServer(std::string answer); // bytes as they are
    explicit ScriptedServer(Way way, std::string answer = {});
    ~ScriptedServer();
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    std::string url() const;
    std::vector<std::string> asked() const; // what each connection sent until it was answered

private:
    void serve();
    void answerOne(int socket);

    const Way _way;
    const std::string _answer;
    int _listener = -1;
    int _wake[2] = {-1, -1};
    mutable std::mutex _mutex;
    std::vector<std::string> _asked;
    std::vector<int> _silent; // connections that get no answer
    std::thread _thread;
};

std::string httpAnswer(const std::string& body, const std::string& status = "200 OK");
std::string cimAnswer(const std::string& method, const std::string& content); // a whole reply of an operation
