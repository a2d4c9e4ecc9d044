#include "BoardSerial.h"

#include "SimTrace.h"

extern "C" {
#include <avr_uart.h>
#include <sim_avr.h>
#include <sim_io.h>
}

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

BoardSerial::BoardSerial(avr_t* avr, int ptyMaster, SimTrace& t)
    : fd(ptyMaster), trace(t), input(avr_io_getirq(avr, AVR_IOCTL_UART_GETIRQ('0'), UART_IRQ_INPUT)) {
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);
    // simavr sleeps a microsecond on every poll of the status register unless told not to.
    uint32_t flags = 0;
    avr_ioctl(avr, AVR_IOCTL_UART_SET_FLAGS('0'), &flags);
    avr_irq_register_notify(avr_io_getirq(avr, AVR_IOCTL_UART_GETIRQ('0'), UART_IRQ_OUTPUT), onOutput, this);
    avr_irq_register_notify(avr_io_getirq(avr, AVR_IOCTL_UART_GETIRQ('0'), UART_IRQ_OUT_XON), onXon, this);
    avr_irq_register_notify(avr_io_getirq(avr, AVR_IOCTL_UART_GETIRQ('0'), UART_IRQ_OUT_XOFF), onXoff, this);
}

void BoardSerial::onOutput(avr_irq_t*, uint32_t value, void* self) {
    static_cast<BoardSerial*>(self)->out.append(char(value));
}

void BoardSerial::onXon(avr_irq_t*, uint32_t, void* self) {
    auto* s = static_cast<BoardSerial*>(self);
    s->full = false;
    s->feed();
}

void BoardSerial::onXoff(avr_irq_t*, uint32_t value, void* self) {
    static_cast<BoardSerial*>(self)->full = value != 0;
}

void BoardSerial::feed() {
    while (!full && hasInput())
        avr_raise_irq(input, uint8_t(pending.at(fed++)));
    if (fed == pending.size()) {
        pending.clear();
        fed = 0;
    }
}

bool BoardSerial::pump() {
    char buf[4096];
    for (;;) {
        const ssize_t n = read(fd, buf, sizeof buf);
        if (n > 0) {
            pending.append(buf, int(n));
            requests.feed(buf, int(n));
            traceFrames(requests, '>');
            continue;
        }
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && errno == EAGAIN) break;
        return false;
    }
    feed();
    return true;
}

bool BoardSerial::flush() {
    if (out.isEmpty()) return true;
    replies.feed(out.constData(), out.size());
    traceFrames(replies, '<');
    int done = 0;
    while (done < out.size()) {
        const ssize_t n = write(fd, out.constData() + done, size_t(out.size() - done));
        if (n < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (n <= 0) return false;
        done += int(n);
    }
    out.clear();
    return true;
}

void BoardSerial::traceFrames(SimFrameParser& parser, char direction) {
    SimFrame f;
    while (parser.next(f))
        trace.write(direction, f.raw);
}
