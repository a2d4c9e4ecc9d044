/* Numbers of the programmer protocol (docs/protocol.md): frame layout, command bytes, error codes. The
 * firmware keeps its own copy, as the simulator does. */
#ifndef PROTOCOL_H
#define PROTOCOL_H

#define FRAME_START 0xC0
#define FRAME_HEADER 4 /* start, command, 16-bit length */
#define REPLY_ERROR 0xFF

/* The programmer's own commands. */
#define CMD_INTERFACE 0x80
#define CMD_IDENT 0x81
#define CMD_LED 0x83
#define CMD_SET_DEVICE 0x84
#define CMD_LEAVE_ALL 0x85
#define CMD_RESET 0x86
#define CMD_GENERATOR 0x87
#define CMD_SET_IO 0x88
#define CMD_SET_VCC 0x89
#define CMD_SET_VPP 0x8A
#define CMD_SET_VICC 0x8B
#define CMD_SET_VIPP 0x8C

/* Family packets; their meaning beyond leave and clock depends on the selected family. */
#define PKT_LEAVE 1
#define PKT_CLOCK 2
#define PKT_3 3
#define PKT_4 4
#define PKT_5 5
#define PKT_6 6
#define PKT_7 7

/* Device type codes of the set-device payload (types.lst). */
#define TYPE_I2C_EEPROM 1
#define TYPE_SPI_FLASH 2
#define TYPE_AVR_ISP 3
#define SET_DEVICE_SIZE 9

#define ERR_UNKNOWN_COMMAND 0
#define ERR_BAD_FRAME 1
#define ERR_LENGTH 2
#define ERR_RANGE 3
#define ERR_NO_DEVICE 4
#define ERR_NO_ACK 5
#define ERR_BUSY 6
#define ERR_WRITE 7
#define ERR_NOT_SUPPORTED 10
#define ERR_INTERNAL 11

/* Pin states of the set-io and leave packets. */
#define PIN_KEEP 0
#define PIN_INPUT 1
#define PIN_PULL_DOWN 2
#define PIN_PULL_UP 3
#define PIN_LOW 4
#define PIN_HIGH 5
#define PIN_OD_LOW 6
#define PIN_OD_HIGH 7
#define PIN_TRISTATE 8

#define LED_IDLE 0
#define LED_SELECTED 1
#define LED_ERROR 2
#define LED_MAX 3

#endif
