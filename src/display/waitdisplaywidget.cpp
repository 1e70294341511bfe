#include "waitdisplaywidget.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSpacerItem>
#include <QTimerEvent>
#include <QVBoxLayout>

namespace Simulation {

namespace {

const int TickMs = 100;
const int BarMaximum = 10;

} // namespace

// The dialog's children, built in code as a form editor would lay them out.
struct WaitDisplayWidget::Ui
{
    QVBoxLayout *verticalLayout = nullptr;
    QLabel *messageLabel = nullptr;
    QProgressBar *progressBar = nullptr;
    QWidget *cancelBox = nullptr;
    QHBoxLayout *cancelLayout = nullptr;
    QPushButton *cancelButton = nullptr;

    void setupUi(QDialog *dialog)
    {
        if (dialog->objectName().isEmpty())
            dialog->setObjectName(QStringLiteral("WaitDisplayWidget"));
        dialog->setWindowModality(Qt::ApplicationModal);
        dialog->resize(400, 94);
        dialog->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        dialog->setMinimumSize(QSize(400, 0));
        dialog->setMaximumSize(QSize(400, QWIDGETSIZE_MAX));
        dialog->setModal(true);

        verticalLayout = new QVBoxLayout(dialog);
        verticalLayout->setObjectName(QStringLiteral("verticalLayout"));

        messageLabel = new QLabel(dialog);
        messageLabel->setObjectName(QStringLiteral("messageLabel"));
        messageLabel->setAlignment(Qt::AlignCenter);
        verticalLayout->addWidget(messageLabel);

        progressBar = new QProgressBar(dialog);
        progressBar->setObjectName(QStringLiteral("progressBar"));
        progressBar->setMaximum(BarMaximum);
        progressBar->setValue(0);
        progressBar->setTextVisible(false);
        progressBar->setInvertedAppearance(false);
        verticalLayout->addWidget(progressBar);

        cancelBox = new QWidget(dialog);
        cancelBox->setObjectName(QStringLiteral("cancelBox"));
        cancelLayout = new QHBoxLayout(cancelBox);
        cancelLayout->setObjectName(QStringLiteral("cancelLayout"));
        cancelLayout->addItem(
            new QSpacerItem(40, 20, QSizePolicy::Expanding, QSizePolicy::Minimum));
        cancelButton = new QPushButton(cancelBox);
        cancelButton->setObjectName(QStringLiteral("cancelButton"));
        cancelLayout->addWidget(cancelButton);
        verticalLayout->addWidget(cancelBox);

        dialog->setWindowTitle(QCoreApplication::translate("WaitDisplayWidget", "Dialog"));
        messageLabel->setText(QCoreApplication::translate("WaitDisplayWidget", "TextLabel"));
        cancelButton->setText(QCoreApplication::translate("WaitDisplayWidget", "Cancel"));

        QMetaObject::connectSlotsByName(dialog);
    }
};

WaitDisplayWidget::WaitDisplayWidget(QWidget *parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui>())
{
    ui->setupUi(this);
    setWindowFlags((windowFlags() & ~(Qt::WindowContextHelpButtonHint | Qt::WindowCloseButtonHint))
        | Qt::CustomizeWindowHint | Qt::WindowSystemMenuHint);
    connect(this, &QDialog::rejected, this, &WaitDisplayWidget::canceled);
}

WaitDisplayWidget::~WaitDisplayWidget() = default;

void WaitDisplayWidget::open(
    const QString &sTitle, const QString &sText, bool bCancelable, uint uiTimeout)
{
    setWindowTitle(sTitle);
    ui->messageLabel->setText(sText);
    ui->cancelBox->setVisible(bCancelable);
    adjustSize();
    if (m_iTimerId == -1) {
        startTicking();
        m_uiElapsed = 0;
        m_uiTimeout = uiTimeout * 1000;
    }
    QDialog::open();
}

void WaitDisplayWidget::close()
{
    stopTicking();
    m_iTimerId = -1;
    accept();
}

void WaitDisplayWidget::pause()
{
    stopTicking();
    hide();
}

void WaitDisplayWidget::doContinue()
{
    stopTicking();
    startTicking();
    show();
}

void WaitDisplayWidget::reject()
{
    if (ui->cancelBox->isVisible())
        QDialog::reject();
}

void WaitDisplayWidget::timerEvent(QTimerEvent *event)
{
    if (!m_bTicking || event->timerId() != m_iTimerId) {
        QDialog::timerEvent(event);
        return;
    }
    ui->progressBar->setValue((ui->progressBar->value() + 1) % (BarMaximum + 1));
    m_uiElapsed += TickMs;
    if (m_uiTimeout != 0 && m_uiElapsed > m_uiTimeout) {
        stopTicking();
        m_iTimerId = -1;
        hide();
        Q_EMIT timeout();
    }
}

void WaitDisplayWidget::startTicking()
{
    m_iTimerId = startTimer(TickMs, Qt::CoarseTimer);
    m_bTicking = true;
}

void WaitDisplayWidget::stopTicking()
{
    if (m_bTicking)
        killTimer(m_iTimerId);
    m_bTicking = false;
}

} // namespace Simulation
