#pragma once

#include <radiosim/radiosim_export.h>

#include <QWidget>

#include <memory>

// A green lamp with a text beside it, in the global namespace. An inactive lamp is the
// disabled look of the same picture (":/Icons/Led-10x10.png"); there is no second one. The
// children are named ("activeLed", "textLabel") so that style sheets can reach them.
class RADIOSIM_EXPORT LedWidget : public QWidget
{
    Q_OBJECT

public:
    explicit LedWidget(QWidget *parent = nullptr);
    ~LedWidget() override;

    QString text() const;
    bool isLedActive() const;

public Q_SLOTS:
    // Resizes the widget to the new text.
    void setText(const QString &a_sText);
    void setLedActive(bool a_bActive);
    void activeateLed();
    void deactivateLed();

private:
    struct Ui;
    std::unique_ptr<Ui> ui;
};
