#pragma once

#include "platform/LeavablePool.h"

#include <QFuture>
#include <QPromise>

#include <exception>
#include <memory>
#include <type_traits>
#include <utility>

namespace Qorvane {

/// Threads for work that the GUI thread only waits for. First in, first out. Whoever owns it may go at any
/// time, so the work owns all that it uses. What hasn't begun by then is not done any more and gives an empty
/// result, so that whoever waits for it goes on.
class WorkerPool
{
public:
    WorkerPool(QualityOfService quality, int threadCount)
        : m_threads(quality, threadCount)
    {
    }

    /// Runs `work`, whose result type must be default-constructible or void. Any thread.
    template <typename Work>
    auto run(Work work) -> QFuture<std::invoke_result_t<Work>>
    {
        auto piece = std::make_shared<Piece<Work>>(std::move(work));
        const auto future = piece->future();
        m_threads.start([piece = std::move(piece)] { piece->run(); });
        return future;
    }

private:
    template <typename Work>
    class Piece
    {
    public:
        using Result = std::invoke_result_t<Work>;

        explicit Piece(Work work)
            : m_work(std::move(work))
        {
            m_promise.start();
        }
        ~Piece()
        {
            if (!m_hasBegun)
                finishWith([] { return Result(); });
        }
        Piece(const Piece &) = delete;
        Piece &operator=(const Piece &) = delete;

        QFuture<Result> future() { return m_promise.future(); }

        void run()
        {
            m_hasBegun = true;
            finishWith(m_work);
        }

    private:
        template <typename Maker>
        void finishWith(Maker &&maker)
        {
            try {
                if constexpr (std::is_void_v<Result>)
                    maker();
                else
                    m_promise.addResult(maker());
            } catch (...) {
                m_promise.setException(std::current_exception());
            }
            m_promise.finish();
        }

        Work m_work;
        QPromise<Result> m_promise;
        bool m_hasBegun = false;
    };

    LeavablePool m_threads;
};

} // namespace Qorvane
