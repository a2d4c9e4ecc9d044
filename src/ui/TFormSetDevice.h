#pragma once

#include "ui/TFormCmd.h"

#include <QPointer>

class QLabel;
class QVBoxLayout;

// The form of "set_device": the chosen device with a button that opens the device selection, and below
// it the device's own settings form, whose keys join the record. Choosing another device starts its
// settings over from that device's defaults.
class TFormSetDevice : public TFormCmd {
    Q_OBJECT
public:
    explicit TFormSetDevice(const TData& param, QWidget* parent = nullptr);

    void setDevice(const QString& name, const QString& file);
    QString getDevice() const;
    // The device's own settings form, or null when the device has none.
    TFormCmd* getDeviceForm() const { return deviceForm; }

private slots:
    void slotChoose();

private:
    void buildDeviceForm();
    void write(TData& p) const;
    void merge(TData& p) const;

    TData current; // device, file and the device's settings as the device form started from them
    bool replaced = false;
    QLabel* name;
    QVBoxLayout* deviceBox;
    QPointer<QWidget> deviceWidget;
    QPointer<TFormCmd> deviceForm;
};
